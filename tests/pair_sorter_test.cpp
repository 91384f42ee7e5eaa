#include "tla/pair_sorter.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using tla::Index_pair;

class Collector final : public tla::Pair_sink {
public:
    void take(std::span<const Index_pair> pairs) override {
        pairs_.insert(pairs_.end(), pairs.begin(), pairs.end());
    }
    const std::vector<Index_pair>& pairs() const { return pairs_; }

private:
    std::vector<Index_pair> pairs_;
};

// Sorts `count` pairs whose hashes `make_hash` gives, and compares with the standard's stable sort.
template <typename Make_hash>
void expect_sorted(std::size_t count, std::size_t expected_count, Make_hash make_hash) {
    tla::Pair_sorter sorter(expected_count);
    std::vector<Index_pair> model;
    for (std::size_t i = 0; i < count; ++i) {
        model.push_back({make_hash(i), i});
        sorter.add(model.back());
    }
    std::stable_sort(model.begin(), model.end(), tla::hash_less);
    Collector collector;
    sorter.drain(collector);
    ASSERT_EQ(collector.pairs().size(), count);
    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_EQ(collector.pairs()[i].key_hash, model[i].key_hash) << i;
        ASSERT_EQ(collector.pairs()[i].record_offset, model[i].record_offset) << i;
    }
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
    expect_sorted(COUNT, COUNT, [&random](std::size_t) { return random() % 3; });
    expect_sorted(COUNT, COUNT, [](std::size_t i) { return i % 2 == 0 ? 0 : ~std::uint64_t{0}; });
}

TEST(Pair_sorter, SortsHashesThatDifferInAnySixteenBits) {
    constexpr std::size_t COUNT = 70000;
    for (unsigned shift = 0; shift < 64; shift += 8) {
        expect_sorted(COUNT, COUNT, [shift](std::size_t i) { return (COUNT - i) << shift; });
    }
}

} // namespace
