#include "tla/sort/pair_sorter.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using tla::Index_pair;

struct Collector final : tla::Tla_pair_sink {
    void take(std::span<const Index_pair> more) override {
        pairs.insert(pairs.end(), more.begin(), more.end());
    }
    std::vector<Index_pair> pairs;
};

// Sorts `count` pairs whose hashes `make_hash` gives, and compares with the standard's stable sort.
template <typename Make_hash>
void expect_sorted(std::size_t count, std::size_t expected_count, Make_hash make_hash) {
    tla::Tla_pair_sorter sorter(expected_count);
    std::vector<Index_pair> model;
    for (std::size_t i = 0; i < count; ++i) {
        model.push_back({make_hash(i), i});
        sorter.add(model.back());
    }
    std::ranges::stable_sort(model, {}, &Index_pair::key_hash);
    Collector collector;
    sorter.drain(collector);
    const auto same = [](const Index_pair& one, const Index_pair& other) {
        return one.key_hash == other.key_hash && one.record_offset == other.record_offset;
    };
    EXPECT_TRUE(std::ranges::equal(collector.pairs, model, same)) << count;
}

TEST(Pair_sorter, SortsUniformHashesOfAnyNumber) {
    std::mt19937_64 random(11);
    for (const std::size_t count : {0U, 1U, 2U, 31U, 254U, 256U, 5000U, 300000U}) {
        expect_sorted(count, count, [&random](std::size_t) { return random(); });
        expect_sorted(count, 100, [&random](std::size_t) { return random(); });
    }
}

// With few distinct keys a bucket outgrows the cache and is split; with one it is sorted already.
TEST(Pair_sorter, KeepsTheOrderOfEqualHashes) {
    constexpr std::size_t COUNT = 200000;
    std::mt19937_64 random(12);
    expect_sorted(COUNT, COUNT, [](std::size_t) { return 0x0123456789ABCDEFU; });
    expect_sorted(COUNT, COUNT, [&random](std::size_t) { return random() % 20 << 59; });
    expect_sorted(COUNT, COUNT, [](std::size_t i) { return i % 2 == 0 ? 0 : ~std::uint64_t{0}; });
    // A bucket too large for the cache whose first pages hold one hash only.
    expect_sorted(40300, 100, [](std::size_t i) { return i < 300 ? 40300 : 40300 - i; });
    for (unsigned shift = 0; shift < 64; shift += 8) { // differ in any sixteen bits
        expect_sorted(70000, COUNT, [shift](std::size_t i) { return (70000 - i) << shift; });
    }
}

// Skewed keys: each hash comes some times, here and there, and others that agree in all bits but
// the lowest come between. Each way of sorting a few pairs meets equal ones among different ones.
TEST(Pair_sorter, KeepsTheOrderOfHashesThatComeAgain) {
    std::mt19937_64 random(13);
    for (const std::size_t distinct : {3U, 40U, 1700U}) {
        for (const std::uint64_t varying : {~std::uint64_t{0}, std::uint64_t{0xFFFFFFFF}}) {
            std::vector<std::uint64_t> hashes(distinct);
            std::ranges::generate(hashes,
                                  [&] { return 0x5DEECE66D0000000 ^ (random() & varying); });
            const auto any = [&](std::size_t) { return hashes[random() % distinct]; };
            expect_sorted(5000, 5000, any);
            expect_sorted(60000, 5000, any);
        }
    }
}

} // namespace
