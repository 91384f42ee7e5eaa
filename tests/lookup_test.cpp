#include "data_set_files.hpp"
#include "records/tla_status_codes.hpp"
#include "tla/data_set_layout.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using test::Connected;
using test::Rows;
using test::sealed;
using Offsets = std::vector<std::int64_t>;

constexpr std::size_t BLOCK = 4096;

// A file of version 1 with one key field, "K", whose pairs are set by hand.
class Table {
public:
    explicit Table(const std::vector<std::string>& texts) {
        Rows rows;
        for (const std::string& text : texts) {
            rows.push_back({text});
        }
        file_ = test::version1("K,Simple", {"K"}, rows, [](auto) { return 0; });
        pairs_ = test::pairs_of_first_key(file_);
        const auto* const bytes = reinterpret_cast<const std::byte*>(file_.data());
        for (std::size_t i = 0; i < texts.size(); ++i) { // with equal hashes, in record order
            records.push_back(scl::scl_load_le<std::int64_t>(bytes + pairs_ + i * 16 + 8));
        }
    }
    void set(std::size_t pair, std::uint64_t hash, std::int64_t offset) {
        test::put(file_, pairs_ + pair * 16, hash);
        test::put(file_, pairs_ + pair * 16 + 8, offset);
    }
    // Pairs of one hash for the first records.
    void set_first(std::size_t count, std::uint64_t hash) {
        for (std::size_t i = 0; i < count; ++i) {
            set(i, hash, records[i]);
        }
    }
    // Pairs of other hashes, ascending and below 100.
    void fill(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            set(i, i / BLOCK * 90 + i % BLOCK / 50, records[i]);
        }
    }
    [[nodiscard]] std::string file() const { return sealed(file_); }
    Offsets find(const std::u16string& text, std::uint64_t hash) const {
        Connected connected(file());
        EXPECT_EQ(connected.load(), 0U);
        Offsets found = connected.find("K", text, hash);
        EXPECT_EQ(connected.status.value(), 0U);
        return found;
    }

    Offsets records; // where each text's record begins

private:
    std::string file_;
    std::size_t pairs_ = 0;
};

TEST(Lookup, FindsEveryValueAndNoOther) {
    constexpr int COUNT = 10000; // three blocks
    Rows rows;
    for (int i = 0; i < COUNT; ++i) {
        rows.push_back({"Name " + std::to_string(i), "City-" + std::to_string(i)});
    }
    Connected file(test::version2("Name,SimpleNC;City,CCNUMBER", {"City", "Name"}, rows));
    ASSERT_EQ(file.load(false), 0U);
    Offsets offsets = file.connector.record_offsets(file.status);
    std::ranges::sort(offsets);
    for (std::size_t i = 0; i < COUNT; i += 7) {
        const std::u16string number = test::wide(std::to_string(i));
        EXPECT_EQ(file.find("Name", u"NAME " + number), Offsets{offsets[i]});
        EXPECT_EQ(file.find("City", u"-City " + number), Offsets{offsets[i]});
        EXPECT_EQ(file.find("Name", u"Names " + number), Offsets{});
    }
    EXPECT_EQ(file.status.value(), 0U);
}

TEST(Lookup, FindsAllRecordsWithTheValue) {
    Connected file(test::version2("K,Simple;V,Simple", {"K"},
                                  {{"a", "1"}, {"b", "2"}, {"a", "3"}, {" a ", "4"}, {"A", "5"}}));
    ASSERT_EQ(file.load(), 0U);
    EXPECT_EQ(file.find("K", u"a").size(), 3);
    EXPECT_EQ(file.find("K", u"A").size(), 1);
    EXPECT_EQ(file.find("K", u" a").size(), 0); // a looked-up value is not trimmed
    EXPECT_EQ(file.find("k", u"a").size(), 0);
    EXPECT_EQ(file.find("V", u"1").size(), 0); // no key
    EXPECT_EQ(file.status.value(), 0U);
    EXPECT_EQ(file.find("K", u"").size(), 0);
    EXPECT_EQ(file.status.value(), tla::TLA_STATUS_NO_TOKENS);
    EXPECT_EQ(test::argument_of(file.status), "");
}

TEST(Lookup, InVersion1GoesByTheGivenHash) {
    Connected file(
        test::version1("K,Simple;N,Nothing", {"K", "N"}, {{"a", "1"}, {"b", "2"}, {"a", "3"}}));
    ASSERT_EQ(file.load(), 0U);
    EXPECT_EQ(file.find("K", u"a", tools::fnv1a("a")).size(), 2);
    EXPECT_EQ(file.find("K", u"a", tools::fnv1a("b")).size(), 0);
    EXPECT_EQ(file.find("K", u"b", tools::fnv1a("b")).size(), 1);
    EXPECT_EQ(file.find("N", u"1", tools::fnv1a("1")).size(), 0); // has no formatter
    EXPECT_EQ(file.status.value(), tla::TLA_STATUS_NO_TOKENS);
}

TEST(Lookup, OtherValuesOfTheHashStandAmongMatches) {
    Table table({"x", "other", "x", "x", "x"});
    table.set_first(3, 5);
    table.set(3, 6, table.records[3]);
    table.set(4, 5, table.records[4]); // out of order: after a match, another hash ends the scan
    EXPECT_EQ(table.find(u"x", 5), (Offsets{table.records[0], table.records[2]}));
}

TEST(Lookup, ReadsOnEightBytesLaterAfterAnotherValueOfTheHash) {
    Table table({"other", "x", "x"});
    table.set_first(3, 5);
    EXPECT_EQ(table.find(u"x", 5), Offsets{});
    EXPECT_EQ(table.find(u"other", 5), Offsets{table.records[0]});
    // Then a pair begins where an offset stands.
    table.set(1, 6, 5);
    table.set(2, static_cast<std::uint64_t>(table.records[1]), 0);
    EXPECT_EQ(table.find(u"x", 5), Offsets{table.records[1]});
}

TEST(Lookup, LooksIntoThePreviousBlockOnlyWhenTheFirstPairIsAnotherValue) {
    for (const std::string third : {"x", "other"}) {
        std::vector<std::string> all(BLOCK + 2, "x");
        all[2] = third;
        Table table(all);
        table.fill(BLOCK + 2);
        for (const std::size_t i : {0, 1, 2}) { // the third stands first in its block
            table.set(BLOCK - 2 + i, 200, table.records[i]);
        }
        table.set(BLOCK + 1, 300, table.records[3]);
        const Offsets before = {table.records[0], table.records[1]};
        EXPECT_EQ(table.find(u"x", 200), third == "x" ? Offsets{table.records[2]} : before);
        EXPECT_EQ(table.find(u"other", 200).size(), third == "other" ? 1 : 0);
    }
}

TEST(Lookup, RunsOnPastTheBlocksEndWhileOtherValuesOfTheHashFollow) {
    std::vector<std::string> all(BLOCK + 3, "y");
    all.back() = "x";
    Table table(all);
    table.fill(BLOCK);
    const std::int64_t wanted = table.records.back();
    table.set(BLOCK - 1, 100, table.records[0]);
    table.set(BLOCK, 101, 100); // read from its offset on
    table.set(BLOCK + 1, static_cast<std::uint64_t>(wanted), 0);
    table.set(BLOCK + 2, 100, table.records[1]);
    EXPECT_EQ(table.find(u"x", 100), Offsets{wanted});
    // One more other value, after which hashes are taken from where they stand again.
    table.set(BLOCK + 1, static_cast<std::uint64_t>(table.records[2]), 0);
    table.set(BLOCK + 2, 100, wanted);
    EXPECT_EQ(table.find(u"x", 100), Offsets{wanted});
}

// The lookup rule, pair by pair, over a table that is held as words: hash, offset, hash, offset ...
class Plain_lookup {
public:
    Plain_lookup(std::vector<std::uint64_t> words, Offsets matching, std::uint64_t wanted)
        : words_(std::move(words)), matching_(std::move(matching)), wanted_(wanted) {}

    Offsets find() {
        const std::size_t count = words_.size() / 2;
        std::size_t block = (count - 1) / BLOCK;
        while (block > 0 && words_[block * BLOCK * 2] > wanted_) {
            --block;
        }
        if (words_[block * BLOCK * 2] > wanted_) return {};
        scan(block, std::min(BLOCK, count), true);
        if (first_differs_ && found_.empty() && block > 0) scan(block - 1, BLOCK, false);
        std::ranges::sort(found_);
        return found_;
    }

private:
    void scan(std::size_t block, std::size_t count, bool runs_on) {
        std::size_t at = block * BLOCK * 2;
        for (std::size_t i = 0; i < count && at + 1 < words_.size(); ++i) {
            if (words_[at] != wanted_) {
                if (!found_.empty()) return;
                at += 2;
                continue;
            }
            const auto offset = static_cast<std::int64_t>(words_[at + 1]);
            at += 2;
            if (std::ranges::binary_search(matching_, offset)) {
                found_.push_back(offset);
                continue;
            }
            first_differs_ = first_differs_ || i == 0;
            if (runs_on && i == BLOCK - 1) --i;
            if (found_.empty()) ++at;
        }
    }

    std::vector<std::uint64_t> words_;
    Offsets matching_; // where the records with the value stand, ascending
    std::uint64_t wanted_;
    Offsets found_;
    bool first_differs_ = false;
};

// A table of random hashes, looked up in both ways. Offsets as hashes and hashes as offsets do not
// occur: the former are small, the latter not looked for, so that a lookup never fails.
class Random_table {
public:
    static constexpr std::size_t COUNT = 2 * BLOCK + 600;

    // Of ten records, `others` have another value than the one looked for.
    Random_table(unsigned distinct, unsigned others, bool sorted)
        : hashes_(random_hashes(distinct)), table_(random_texts(others)) {
        if (!sorted) std::swap(hashes_[50], hashes_[BLOCK + 50]);
        for (std::size_t i = 0; i < COUNT; ++i) {
            table_.set(i, hashes_[i], table_.records[i]);
            words_.push_back(hashes_[i]);
            words_.push_back(static_cast<std::uint64_t>(table_.records[i]));
        }
    }
    void compare() {
        Connected connected(table_.file());
        ASSERT_EQ(connected.load(), 0U);
        for (const std::size_t i : {std::size_t{0}, BLOCK - 1, BLOCK, BLOCK + 50, COUNT - 1}) {
            compare(connected, hashes_[i]);
        }
        for (int i = 0; i < 20; ++i) {
            compare(connected, hashes_[random_() % COUNT] + (i % 5 == 0 ? 1 : 0));
        }
        EXPECT_EQ(connected.status.value(), 0U);
    }

private:
    std::vector<std::uint64_t> random_hashes(unsigned distinct) {
        std::vector<std::uint64_t> hashes(COUNT);
        const std::uint64_t step = ~std::uint64_t{0} / distinct;
        std::ranges::generate(hashes, [&] { return (random_() % distinct + 1) * step; });
        std::ranges::sort(hashes);
        return hashes;
    }
    std::vector<std::string> random_texts(unsigned others) {
        std::ranges::generate(texts_, [&] { return random_() % 10 < others ? "y" : "x"; });
        return texts_;
    }
    void compare(Connected& connected, std::uint64_t wanted) {
        Offsets matching;
        for (std::size_t i = 0; i < COUNT; ++i) {
            if (texts_[i] == "x") matching.push_back(table_.records[i]);
        }
        EXPECT_EQ(connected.find("K", u"x", wanted),
                  Plain_lookup(words_, std::move(matching), wanted).find());
    }

    std::mt19937_64 random_{7}; // NOLINT: the same numbers each time
    std::vector<std::string> texts_ = std::vector<std::string>(COUNT);
    std::vector<std::uint64_t> hashes_;
    Table table_;
    std::vector<std::uint64_t> words_;
};

TEST(Lookup, FindsWhatAPlainScanFinds) {
    for (const unsigned distinct : {20000U, 40U, 2U}) {
        for (const unsigned others : {0U, 5U}) {
            Random_table(distinct, others, true).compare();
            Random_table(distinct, others, false).compare();
        }
    }
}

TEST(Lookup, PairsThatShareRecordsCostNoMoreThanTheFile) {
    Rows rows(1000, {"k", "v"});
    rows.front()[1] = std::string(10000, '-'); // as many tokens
    std::string file = test::version1("K,Simple;V,Simple", {"K"}, rows);
    test::share_first_record(file);
    Connected damaged(sealed(file));
    ASSERT_EQ(damaged.load(), 0U);
    EXPECT_LE(damaged.find("K", u"k", tools::fnv1a("k")).size(), file.size() / 10000);
    EXPECT_EQ(damaged.status.value(), tla::TLA_STATUS_NO_DATA_SET);
    EXPECT_EQ(test::argument_of(damaged.status), damaged.path());
}

} // namespace
