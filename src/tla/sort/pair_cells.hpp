#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tla {

// An entry of a key table: where the records with a key hash stand.
struct Index_pair {
    std::uint64_t key_hash;
    std::uint64_t record_offset; // in bytes from the start of the file
};
static_assert(sizeof(Index_pair) == 16);

[[nodiscard]] constexpr bool hash_less(const Index_pair& a, const Index_pair& b) {
    return a.key_hash < b.key_hash;
}

// A page of pairs, linked to the next of its bucket. Lies at a multiple of its size.
struct Pair_cell {
    static constexpr std::size_t PAIRS = 255;

    Pair_cell* next;
    std::uint64_t reserved;
    std::array<Index_pair, PAIRS> pairs;
};
static_assert(sizeof(Pair_cell) == 4096);

// Owns all cells of a sort. A cell that is given back is the next one taken, so that splitting a
// bucket further needs hardly more memory than the bucket itself.
class Pair_cells {
public:
    [[nodiscard]] Pair_cell* take();
    void give_back(Pair_cell* cell);

private:
    struct Free {
        void operator()(Pair_cell* slab) const;
    };

    void add_slab();

    std::vector<std::unique_ptr<Pair_cell[], Free>> slabs_;
    std::size_t used_in_last_slab_ = 0;
    std::size_t last_slab_cells_ = 0;
    Pair_cell* free_ = nullptr; // given back, each linked to the next
};

// Pairs in the order in which they were added. As small as can be, since a thousand buckets take
// turns: where a cell ends its address tells.
class Pair_bucket {
public:
    void add(const Index_pair& pair, Pair_cells& cells) {
        if (is_full()) add_cell(cells);
        // Its next line of memory: the buckets are too many for the processor to see it coming.
        __builtin_prefetch(at_ + PREFETCH_PAIRS, 1);
        *at_++ = pair;
    }

    // The pairs of one of its cells.
    [[nodiscard]] std::span<const Index_pair> pairs_of(const Pair_cell& cell) const;
    [[nodiscard]] Pair_cell* first_cell() const { return first_; }
    [[nodiscard]] std::size_t size() const;
    // True when all pairs have the same hash.
    [[nodiscard]] bool is_uniform() const;

private:
    static constexpr std::size_t PREFETCH_PAIRS = 64 / sizeof(Index_pair);

    // Null is: there is no cell yet.
    [[nodiscard]] bool is_full() const {
        return std::bit_cast<std::uintptr_t>(at_) % sizeof(Pair_cell) == 0;
    }
    [[nodiscard]] Pair_cell* last_cell() const;
    void add_cell(Pair_cells& cells);

    Index_pair* at_ = nullptr; // where the next pair goes
    Pair_cell* first_ = nullptr;
};

} // namespace tla
