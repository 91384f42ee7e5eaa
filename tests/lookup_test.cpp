#include "data_set_files.hpp"
#include "records/values/tla_status_codes.hpp"
#include "small_reader.hpp"
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
        for (std::size_t i = 0; i < texts.size(); ++i) { // with equal hashes, in record order
            records.push_back(test::number_at<std::int64_t>(file, pairs + i * 16 + 8));
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

// The lookup rule of docs/reading.md, step by step as it is told there, and slowly.
class Slow_lookup {
public:
    // `matching` are the records that have the value, ascending.
    Slow_lookup(const Table& table, std::size_t count, const Offsets& matching)
        : table_(table), count_(count), matching_(matching) {}

    Offsets find(std::uint64_t wanted) const {
        for (std::size_t block = 0; block * BLOCK < count_; ++block) {
            const bool next_is_higher =
                (block + 1) * BLOCK >= count_ || number(start_of(block + 1)) > wanted;
            if (number(start_of(block)) > wanted || !next_is_higher) continue;
            Offsets found = records_from(start_of(block), wanted, std::min(BLOCK, count_), true);
            const bool is_other = number(start_of(block)) == wanted && !holds(start_of(block));
            if (found.empty() && is_other && block > 0) {
                found = records_from(start_of(block - 1), wanted, BLOCK, false);
            }
            std::ranges::sort(found);
            return found;
        }
        return {};
    }

private:
    Offsets records_from(std::size_t pair, std::uint64_t wanted, std::size_t left,
                         bool may_go_on) const {
        Offsets found;
        const bool whole = left == BLOCK;
        for (; left > 0 && pair + 16 <= table_.file.size(); --left, pair += 16) {
            const bool has_hash = number(pair) == wanted;
            if (!has_hash && !found.empty()) break;
            if (has_hash && holds(pair)) {
                found.push_back(static_cast<std::int64_t>(number(pair + 8)));
            } else if (has_hash) {
                if (left == 1 && whole && may_go_on) ++left;
                if (found.empty()) pair += 8;
            }
        }
        return found;
    }
    bool holds(std::size_t pair) const {
        return std::ranges::binary_search(matching_, static_cast<std::int64_t>(number(pair + 8)));
    }
    std::size_t start_of(std::size_t block) const { return table_.pairs + block * BLOCK * 16; }
    std::uint64_t number(std::size_t place) const {
        return test::number_at<std::uint64_t>(table_.file, place);
    }

    const Table& table_;
    std::size_t count_;
    const Offsets& matching_;
};

// A table of random pairs, the last of which the header does not count. Hashes are record offsets,
// too, and many pairs lead to the few records whose offsets they are: a pair read from its offset
// on is one as well.
class Random_table {
public:
    static constexpr std::size_t WHOLE_BLOCKS = 4;
    static constexpr std::size_t COUNTED = WHOLE_BLOCKS * BLOCK + 600;
    static constexpr std::size_t COUNT = COUNTED + 900;
    enum Order { SORTED, PAIR_MOVED, BLOCKS_MIXED };

    // Of ten records, `others` have another value than the one looked for.
    Random_table(unsigned distinct, unsigned others, Order order)
        : random_(distinct + others),
          table_(random_texts(others)),
          hashes_(random_hashes(distinct)) {
        if (order == PAIR_MOVED) std::swap(hashes_[50], hashes_[BLOCK + 50]);
        for (std::size_t i = 0; order == BLOCKS_MIXED && i < WHOLE_BLOCKS; ++i) {
            const std::size_t other = (i + 1 + random_() % (WHOLE_BLOCKS - 1)) % WHOLE_BLOCKS;
            std::swap_ranges(&hashes_[i * BLOCK], &hashes_[(i + 1) * BLOCK],
                             &hashes_[other * BLOCK]);
        }
        for (std::size_t i = 0; i < COUNT; ++i) {
            table_.set(i, hashes_[i],
                       random_() % 3 == 0 ? static_cast<std::int64_t>(any_hash())
                                          : table_.records[random_() % COUNT]);
            if (texts_[i] == "x") matching_.push_back(table_.records[i]);
        }
    }
    void compare() {
        test::put(table_.file, 28, static_cast<std::uint32_t>(COUNTED));
        test::Loaded connected(sealed(table_.file));
        const Slow_lookup slow(table_, COUNTED, matching_);
        std::vector<std::uint64_t> wanted = {hashes_[0],          hashes_[50],
                                             hashes_[BLOCK - 1],  hashes_[BLOCK],
                                             hashes_[BLOCK + 50], hashes_[COUNT - 1]};
        for (int i = 0; i < 30; ++i) {
            wanted.push_back(any_hash() + (i % 5 == 0 ? 1 : 0));
        }
        for (const std::uint64_t hash : wanted) {
            EXPECT_EQ(connected.find("K", u"x", hash), slow.find(hash));
        }
        EXPECT_EQ(connected.status.value(), 0U);
    }

private:
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

    std::mt19937_64 random_;
    std::vector<std::string> texts_ = std::vector<std::string>(COUNT);
    Table table_;
    std::vector<std::uint64_t> hashes_;
    Offsets matching_; // where the records with the value begin, ascending
};

TEST(Lookup, FindsWhatTheRuleSaysInAnyTable) {
    for (const unsigned distinct : {16000U, 40U, 2U}) {
        for (const unsigned others : {0U, 5U, 9U}) {
            for (const auto order :
                 {Random_table::SORTED, Random_table::PAIR_MOVED, Random_table::BLOCKS_MIXED}) {
                Random_table(distinct, others, order).compare();
            }
        }
    }
}

TEST(Largest_token_count, IsThatOfAnyRecord) {
    Rows rows(9000, {"a b", "c", "d"});
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i][1] += std::to_string(i);
    }
    rows[4000] = {"a", std::string(40000, '-'), "4-1"}; // larger than any window
    rows[8000][0] = "a b c d e";
    test::Loaded file(test::version2("A,Simple;B,Simple;C,CCNUMBER", {"C", "A", "B"}, rows));
    const auto count = [&file](std::size_t key) {
        EXPECT_EQ(file.held.largest_token_count(key, file.status),
                  file.connector.largest_token_count(key, file.status));
        return file.connector.largest_token_count(key, file.status);
    };
    EXPECT_EQ(file.connector.record_count(), 9000);
    EXPECT_EQ(std::vector({count(0), count(1), count(2), count(3)}),
              std::vector({1U, 5U, 40000U, 0U}));
    EXPECT_EQ(file.status.value(), 0U);
    // What the file does not count as a record is none, and may be anything.
    std::string lost = test::version2("A,Simple", {"A"}, {{"a b"}, {"c"}, {"d"}});
    const std::size_t third = test::Small_reader(lost).records()[2];
    test::put(lost, third, std::uint16_t{0xFFFF});
    test::put(lost, 28, std::uint32_t{2});
    test::Loaded shortened(sealed(lost));
    EXPECT_EQ(shortened.connector.largest_token_count(0, shortened.status), 2);
    EXPECT_EQ(shortened.status.value(), 0U);
    test::Loaded old(test::version1("A,Simple", {"A"}, {{"a"}}));
    EXPECT_EQ(old.connector.largest_token_count(0, old.status), 0);
    EXPECT_EQ(old.status.value(), tla::TLA_STATUS_VERSION);
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
