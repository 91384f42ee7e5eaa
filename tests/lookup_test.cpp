#include "data_set_files.hpp"
#include "records/tla_status_codes.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <random>

namespace {

using test::Connected;
using test::Rows;
using test::sealed;
using Offsets = std::vector<std::int64_t>;

constexpr std::size_t BLOCK = 4096;

// A file of version 1 with one key field, "K", whose pairs are set by hand.
struct Table {
    explicit Table(const std::vector<std::string>& texts) {
        Rows rows;
        for (const std::string& text : texts) {
            rows.push_back({text});
        }
        file = test::version1("K,Simple", {"K"}, rows, [](auto) { return 0; });
        pairs = test::pairs_of_first_key(file);
        const auto* const bytes = reinterpret_cast<const std::byte*>(file.data());
        for (std::size_t i = 0; i < texts.size(); ++i) { // with equal hashes, in record order
            records.push_back(scl::scl_load_le<std::int64_t>(bytes + pairs + i * 16 + 8));
        }
    }
    void set(std::size_t pair, std::uint64_t hash, std::int64_t offset) {
        test::put(file, pairs + pair * 16, hash);
        test::put(file, pairs + pair * 16 + 8, offset);
    }
    // Pairs of other hashes, ascending and below 100.
    void fill(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            set(i, i / BLOCK * 90 + i % BLOCK / 50, records[i]);
        }
    }
    Offsets find(const std::u16string& text, std::uint64_t hash) const {
        test::Loaded connected(sealed(file));
        return connected.find("K", text, hash);
    }

    std::string file;
    std::size_t pairs = 0;
    Offsets records; // where each text's record begins
};

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
    test::Loaded file(test::version1("K,Simple;N,Nothing", {"K", "N"}, {{"a", "1"}, {"a", "3"}}));
    EXPECT_EQ(file.find("K", u"a", tools::fnv1a("a")).size(), 2);
    EXPECT_EQ(file.find("K", u"a", tools::fnv1a("b")).size(), 0);
    EXPECT_EQ(file.find("N", u"1", tools::fnv1a("1")).size(), 0); // has no formatter
    EXPECT_EQ(file.status.value(), tla::TLA_STATUS_NO_TOKENS);
}

TEST(Lookup, ReadsOnEightBytesLaterAfterAnotherValueOfTheHash) {
    Table table({"other", "x", "x"});
    for (const std::size_t i : {0U, 1U, 2U}) {
        table.set(i, 5, table.records[i]);
    }
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
        for (const std::size_t i : {0U, 1U, 2U}) { // the third stands first in its block
            table.set(BLOCK - 2 + i, 200, table.records[i]);
        }
        table.set(BLOCK + 1, 300, table.records[3]);
        const Offsets before = {table.records[0], table.records[1]};
        EXPECT_EQ(table.find(u"x", 200), third == "x" ? Offsets{table.records[2]} : before);
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

// A table of random pairs, looked up by the rule read literally. Hashes are record offsets, too,
// and many pairs lead to the few records whose offsets they are: a pair read from its offset on is
// one as well.
class Random_table {
public:
    static constexpr std::size_t COUNT = 2 * BLOCK + 600;

    // Of ten records, `others` have another value than the one looked for.
    Random_table(unsigned distinct, unsigned others, bool sorted)
        : table_(random_texts(others)), hashes_(random_hashes(distinct)) {
        if (!sorted) std::swap(hashes_[50], hashes_[BLOCK + 50]);
        for (std::size_t i = 0; i < COUNT; ++i) {
            const auto offset = random_() % 3 == 0 ? static_cast<std::int64_t>(any_hash())
                                                   : table_.records[random_() % COUNT];
            table_.set(i, hashes_[i], offset);
            words_.push_back(hashes_[i]);
            words_.push_back(static_cast<std::uint64_t>(offset));
            if (texts_[i] == "x") matching_.push_back(table_.records[i]);
        }
    }
    void compare() {
        test::Loaded connected(sealed(table_.file));
        std::vector<std::uint64_t> wanted = {hashes_[0],     hashes_[BLOCK - 1],
                                             hashes_[BLOCK], hashes_[BLOCK + 50],
                                             hashes_[50],    hashes_[COUNT - 1]};
        for (int i = 0; i < 20; ++i) {
            wanted.push_back(any_hash() + (i % 5 == 0 ? 1 : 0));
        }
        for (const std::uint64_t hash : wanted) {
            EXPECT_EQ(connected.find("K", u"x", hash), plain_find(hash));
        }
        EXPECT_EQ(connected.status.value(), 0U);
    }

private:
    Offsets plain_find(std::uint64_t wanted) const {
        Offsets found;
        std::size_t block = (COUNT - 1) / BLOCK;
        while (block > 0 && words_[block * BLOCK * 2] > wanted) {
            --block;
        }
        if (words_[block * BLOCK * 2] > wanted) return found;
        const bool first_differs = scan(block, wanted, true, found);
        if (first_differs && found.empty() && block > 0) scan(block - 1, wanted, false, found);
        std::ranges::sort(found);
        return found;
    }
    // Pair by pair, whether the first one has the wanted hash and another value.
    bool scan(std::size_t block, std::uint64_t wanted, bool runs_on, Offsets& found) const {
        bool first_differs = false;
        std::size_t at = block * BLOCK * 2;
        for (std::size_t i = 0; i < BLOCK && at + 1 < words_.size(); ++i, at += 2) {
            if (words_[at] != wanted) {
                if (!found.empty()) break;
                continue;
            }
            const auto offset = static_cast<std::int64_t>(words_[at + 1]);
            if (std::ranges::binary_search(matching_, offset)) {
                found.push_back(offset);
                continue;
            }
            first_differs = first_differs || i == 0;
            if (runs_on && i == BLOCK - 1) --i;
            if (found.empty()) ++at;
        }
        return first_differs;
    }
    std::uint64_t any_hash() { return hashes_[random_() % COUNT]; }
    std::vector<std::uint64_t> random_hashes(unsigned distinct) {
        std::vector<std::uint64_t> hashes(COUNT);
        std::ranges::generate(hashes, [&] {
            const std::size_t record = random_() % distinct * (COUNT / distinct);
            return static_cast<std::uint64_t>(table_.records[record]);
        });
        std::ranges::sort(hashes);
        return hashes;
    }
    std::vector<std::string> random_texts(unsigned others) {
        std::ranges::generate(texts_, [&] { return random_() % 10 < others ? "y" : "x"; });
        return texts_;
    }

    std::mt19937_64 random_{7}; // NOLINT: the same numbers each time
    std::vector<std::string> texts_ = std::vector<std::string>(COUNT);
    Table table_;
    std::vector<std::uint64_t> hashes_;
    std::vector<std::uint64_t> words_; // of the table: hash, offset, hash, offset ...
    Offsets matching_;                 // where the records with the value stand, ascending
};

TEST(Lookup, FindsWhatAPlainScanFinds) {
    for (const unsigned distinct : {8000U, 40U, 2U}) {
        for (const unsigned others : {0U, 5U, 9U}) {
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
    test::Loaded damaged(sealed(file));
    EXPECT_LE(damaged.find("K", u"k", tools::fnv1a("k")).size(), file.size() / 10000);
    EXPECT_EQ(damaged.status.value(), tla::TLA_STATUS_NO_DATA_SET);
    EXPECT_EQ(test::argument_of(damaged.status), damaged.path());
}

} // namespace
