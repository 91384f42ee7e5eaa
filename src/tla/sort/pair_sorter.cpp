#include "tla/sort/pair_sorter.hpp"

#include "tla/sort/radix_sort.hpp"

#include <algorithm>
#include <bit>
#include <utility>

namespace tla {

namespace {

constexpr unsigned HASH_BITS = 64;
constexpr std::size_t SMALL_BUCKET = 32768; // pairs that are sorted in one piece: half a MiB

// Buckets take turns in being written to, each at a cache line and a page of its own: 256 of them
// stay in the caches, and adding a million pairs takes less time than with 1024. More are worth it
// only where 256 would each grow too large to be sorted in one piece.
constexpr unsigned FEW_BUCKETS_BITS = 8;
constexpr unsigned MOST_BUCKETS_BITS = 10;
constexpr std::uint64_t FEW_PAIRS = 512; // fewer a bucket are not worth the bucket

unsigned bucket_bits(std::uint64_t expected_count, unsigned settled_bits) {
    const auto bits_for = [expected_count](std::uint64_t pairs_a_bucket) {
        return static_cast<unsigned>(std::bit_width(expected_count / pairs_a_bucket));
    };
    const unsigned large =
        std::clamp(bits_for(SMALL_BUCKET / 2), FEW_BUCKETS_BITS, MOST_BUCKETS_BITS);
    return std::min({bits_for(FEW_PAIRS), large, HASH_BITS - settled_bits});
}

} // namespace

struct Tla_pair_sorter::Workspace {
    std::vector<Index_pair> pairs;
    std::vector<Index_pair> spare;
};

Tla_pair_sorter::Tla_pair_sorter(std::uint64_t expected_count)
    : Tla_pair_sorter(expected_count, 0, std::make_shared<Pair_cells>(),
                      std::make_shared<Workspace>()) {}

Tla_pair_sorter::Tla_pair_sorter(std::uint64_t expected_count, unsigned settled_bits,
                                 std::shared_ptr<Pair_cells> cells,
                                 std::shared_ptr<Workspace> workspace)
    : cells_(std::move(cells)),
      workspace_(std::move(workspace)),
      settled_bits_(settled_bits + bucket_bits(expected_count, settled_bits)),
      shift_(std::min(HASH_BITS - settled_bits_, HASH_BITS - 1)),
      buckets_(std::size_t{1} << (settled_bits_ - settled_bits)) {}

// Buckets by their number are in the order of the hashes' top bits, so that what each gives follows
// what the one before gave.
void Tla_pair_sorter::drain(Tla_pair_sink& sink) {
    for (Pair_bucket& bucket : buckets_) {
        drain_bucket(bucket, sink);
        bucket = {};
    }
}

// A large bucket has few different hashes, or there are more pairs than buckets can part. If just
// one, it is sorted as it stands; splitting it would never end.
void Tla_pair_sorter::drain_bucket(Pair_bucket& bucket, Tla_pair_sink& sink) {
    const std::size_t size = bucket.size();
    if (size <= SMALL_BUCKET) {
        drain_small(bucket, sink);
    } else if (bucket.is_uniform()) {
        for (const Pair_cell* cell = bucket.first_cell(); cell != nullptr; cell = cell->next) {
            sink.take(bucket.pairs_of(*cell));
        }
        release(bucket);
    } else {
        split(bucket, size, sink);
    }
}

// Out of the cells into one piece, whose memory serves all buckets in turn.
void Tla_pair_sorter::drain_small(const Pair_bucket& bucket, Tla_pair_sink& sink) {
    std::vector<Index_pair>& pairs = workspace_->pairs;
    pairs.clear();
    for (const Pair_cell* cell = bucket.first_cell(); cell != nullptr; cell = cell->next) {
        const std::span<const Index_pair> found = bucket.pairs_of(*cell);
        pairs.insert(pairs.end(), found.begin(), found.end());
    }
    release(bucket);
    workspace_->spare.resize(std::max(workspace_->spare.size(), pairs.size()));
    radix_sort(pairs, workspace_->spare, settled_bits_);
    sink.take(pairs);
}

// Each cell is given back as soon as its pairs are taken over, so that the parts take hardly more
// memory than the bucket had.
void Tla_pair_sorter::split(const Pair_bucket& bucket, std::size_t size, Tla_pair_sink& sink) {
    Tla_pair_sorter parts(size, settled_bits_, cells_, workspace_);
    for (Pair_cell* cell = bucket.first_cell(); cell != nullptr;) {
        for (const Index_pair& pair : bucket.pairs_of(*cell)) {
            parts.add(pair);
        }
        Pair_cell* const next = cell->next;
        cells_->give_back(cell);
        cell = next;
    }
    parts.drain(sink);
}

void Tla_pair_sorter::release(const Pair_bucket& bucket) {
    for (Pair_cell* cell = bucket.first_cell(); cell != nullptr;) {
        Pair_cell* const next = cell->next;
        cells_->give_back(cell);
        cell = next;
    }
}

} // namespace tla
