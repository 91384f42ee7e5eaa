// What docs/reading.md promises of lookups: which records that have a pair are found.

#include "data_set_files.hpp"
#include "small_reader.hpp"

#include <algorithm>
#include <map>
#include <set>

namespace {

using test::Rows;
using Offsets = std::vector<std::int64_t>;

constexpr std::size_t BLOCK = 4096; // pairs

// By key hash the offsets of the first table's pairs: all, or of pairs on both sides of a block's
// border only those behind it.
std::map<std::uint64_t, Offsets> offsets_by_hash(const test::Small_reader& reader, bool all) {
    std::map<std::uint64_t, Offsets> by_hash;
    const auto& pairs = reader.tables().at(0).pairs;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        Offsets& offsets = by_hash[pairs[i].first];
        if (i % BLOCK == 0 && !all) offsets.clear();
        offsets.push_back(static_cast<std::int64_t>(pairs[i].second));
    }
    return by_hash;
}

// What docs/reading.md promises of a file with one key.
void expect_all_found(const Rows& rows) {
    const std::string file = test::version2("K,Simple;V,Simple", {"K"}, rows);
    const test::Small_reader reader(file);
    auto expected = offsets_by_hash(reader, false);
    auto with_pair = offsets_by_hash(reader, true);
    test::Loaded connected(file);
    std::set<std::string> looked_up;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::string& key = rows[i][0];
        if (!looked_up.insert(key).second) continue;
        const std::uint64_t hash =
            test::Small_reader::crc(reader.value_bytes(reader.records()[i], 0));
        EXPECT_EQ(connected.find("K", test::wide(key)), expected[hash]);
        EXPECT_EQ(connected.find_records(0, test::wide(key)), with_pair[hash]);
        EXPECT_EQ(connected.find("K", test::wide(key + "x")), Offsets{});
        EXPECT_EQ(connected.find_records(0, test::wide(key + "x")), Offsets{});
    }
    EXPECT_EQ(connected.status.value(), 0U);
}

TEST(Lookup, FindsEveryRecordThatHasAPair) {
    // The last `repeated` rows equal the first ones and are left out of the table.
    const auto expect_found = [](int count, auto key_of, int repeated = 0) {
        Rows rows;
        for (int i = 0; i < count + repeated; ++i) {
            rows.push_back({"k" + std::to_string(key_of(i % count)), std::to_string(i % count)});
        }
        expect_all_found(rows);
    };
    const auto all_different = [](int i) { return i; };
    const auto one_of_many = [](int i) { return std::max(0, i - 4000); };
    const auto a_few_of_many = [](int i) { return i % 3 == 0 ? i : i % 5; };
    expect_found(9000, all_different);
    expect_found(7000, one_of_many);
    expect_found(14000, a_few_of_many);
    expect_found(15000, all_different, 5000);
    expect_found(BLOCK, all_different, 1); // the index reckons with a block more
}

// Three blocks of pairs with one hash, whose records have two values.
TEST(Find_records, MissesNoneAmongEqualHashesOverBlocks) {
    constexpr std::size_t COUNT = 3 * BLOCK + 200;
    Rows rows;
    for (std::size_t i = 0; i < COUNT; ++i) {
        rows.push_back({i % 3 == 0 ? "x" : "y", std::to_string(i)});
    }
    std::string file = test::version2("K,Simple;V,Simple", {"K"}, rows);
    const test::Small_reader reader(file);
    const std::set<std::int64_t> all(reader.records().begin(), reader.records().end());
    const std::uint64_t hash =
        test::Small_reader::crc(reader.value_bytes(reader.records().front(), 0));
    const std::size_t pairs = test::pairs_of_first_key(file);
    Offsets expected;
    for (std::size_t i = 0; i < COUNT; ++i) {
        const bool has_it = i >= 100 && i < COUNT - 100;
        test::put(file, pairs + i * 16, has_it ? hash : i < 100 ? hash - 1 : hash + 1);
        const auto offset = test::number_at<std::int64_t>(file, pairs + i * 16 + 8);
        const auto place = std::distance(all.begin(), all.find(offset));
        if (has_it && place % 3 == 0) expected.push_back(offset);
    }
    std::ranges::sort(expected);
    const auto expect_found = [&file, &expected] {
        test::Loaded connected(test::sealed(file));
        EXPECT_EQ(connected.find_records(0, u"x"), expected);
        EXPECT_EQ(connected.find_records(1, u"x"), Offsets{});
        EXPECT_EQ(connected.status.value(), 0U);
    };
    expect_found();
    test::put(file, pairs + std::size_t{99} * 16,
              hash + 1); // in the first block, which then does not ascend
    test::put(file, pairs + 2 * BLOCK * 16, hash - 1); // nor do the blocks
    std::erase(expected, test::number_at<std::int64_t>(file, pairs + 2 * BLOCK * 16 + 8));
    expect_found();
}

} // namespace
