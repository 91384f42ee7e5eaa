#pragma once

#include "tla/sort/pair_cells.hpp"

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

// Sorts pairs by hash; equal hashes keep the order in which they were added. Pairs go straight into
// one of up to 1024 buckets by the top bits of their hash, which are uniform; a bucket is sorted
// when its turn comes, inside the cache, and one that is too large for that (few distinct keys) is
// split further by the bits below. Memory: 16 bytes a pair, and a few MiB whatever their number.
class Tla_pair_sorter {
public:
    explicit Tla_pair_sorter(std::uint64_t expected_count);

    void add(const Index_pair& pair) { buckets_[bucket_of(pair)].add(pair, *cells_); }

    // Hands all pairs over in order and leaves the sorter empty.
    void drain(Tla_pair_sink& sink);

private:
    struct Workspace;

    Tla_pair_sorter(std::uint64_t expected_count, unsigned settled_bits,
                    std::shared_ptr<Pair_cells> cells, std::shared_ptr<Workspace> workspace);

    [[nodiscard]] std::size_t bucket_of(const Index_pair& pair) const {
        return (pair.key_hash >> shift_) & (buckets_.size() - 1);
    }
    void drain_bucket(Pair_bucket& bucket, Tla_pair_sink& sink);
    void drain_small(const Pair_bucket& bucket, Tla_pair_sink& sink);
    void split(const Pair_bucket& bucket, std::size_t size, Tla_pair_sink& sink);
    void release(const Pair_bucket& bucket);

    std::shared_ptr<Pair_cells> cells_;    // shared by the sorters of a split
    std::shared_ptr<Workspace> workspace_; // likewise
    unsigned settled_bits_;                // from the top, the same in all pairs of a bucket
    unsigned shift_;                       // brings the bits that choose the bucket down
    std::vector<Pair_bucket> buckets_;     // a power of two
};

} // namespace tla
