#pragma once

#include "tla/sort/pair_pages.hpp"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tla {

// Receives sorted pairs, piece by piece.
class Tla_pair_sink {
public:
    Tla_pair_sink() = default;
    Tla_pair_sink(const Tla_pair_sink&) = delete;
    Tla_pair_sink& operator=(const Tla_pair_sink&) = delete;
    virtual ~Tla_pair_sink() = default;

    virtual void take(std::span<const Index_pair> pairs) = 0;
};

// Sorts pairs by hash; equal hashes keep the order in which they were added.
//
// add() puts a pair into one of up to 1024 buckets (256 for up to four million pairs) by the top
// bits of its hash. Hashes are uniform, so buckets are of about the same size. drain() sorts one
// bucket after the other, each within the cache. A bucket that is too large for that (few distinct
// keys) is split by the next bits.
//
// Invariant: the pairs of a bucket agree in their top prefix_bits_ bits. With 10 bits, bucket 0x3FF
// has the hashes from 0xFFC0000000000000 on.
//
// Memory: 16 bytes a pair, and a few MiB whatever their number; memory exhausted is thrown
// (std::bad_alloc). Tested by tests/pair_sorter_test.cpp.
class Tla_pair_sorter {
public:
    // The expected count sets the number of buckets; a wrong one costs time only.
    explicit Tla_pair_sorter(std::uint64_t expected_count);

    void add(const Index_pair& pair) { buckets_[bucket_of(pair)].add(pair, *pages_); }

    // Hands all pairs over in order and leaves the sorter empty.
    void drain(Tla_pair_sink& sink);

private:
    struct Workspace;

    Tla_pair_sorter(std::uint64_t expected_count, unsigned prefix_bits,
                    std::shared_ptr<Pair_pages> pages, std::shared_ptr<Workspace> workspace);

    [[nodiscard]] std::size_t bucket_of(const Index_pair& pair) const {
        return (pair.key_hash >> shift_) & (buckets_.size() - 1);
    }
    void drain_bucket(Pair_bucket& bucket, Tla_pair_sink& sink);
    void drain_small(const Pair_bucket& bucket, Tla_pair_sink& sink);
    void split(const Pair_bucket& bucket, std::size_t size, Tla_pair_sink& sink);
    void release(const Pair_bucket& bucket);

    std::shared_ptr<Pair_pages> pages_;    // shared by the sorters of a split
    std::shared_ptr<Workspace> workspace_; // likewise
    unsigned prefix_bits_;                 // how many top bits the pairs of a bucket have in common
    unsigned shift_; // moves the last of these bits, the bucket's number, to the bottom
    std::vector<Pair_bucket> buckets_; // a power of two
};

} // namespace tla
