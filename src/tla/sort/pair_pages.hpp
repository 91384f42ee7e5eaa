#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tla {

// An entry of a key table: a record's offset, and the hash of its key value.
struct Index_pair {
    std::uint64_t key_hash;
    std::uint64_t record_offset; // in bytes from the start of the file
};
static_assert(sizeof(Index_pair) == 16);

[[nodiscard]] constexpr bool hash_less(const Index_pair& a, const Index_pair& b) {
    return a.key_hash < b.key_hash;
}

// A page of pairs, linked to the next page of its bucket:
//
//   next, unused (16 bytes) | 255 pairs of 16 bytes                          4096 bytes in all
//
// Invariant: a page lies at a multiple of its size. For instance a pair at 0x7f0000003ff0 is the
// last of the page at 0x7f0000003000.
struct Pair_page {
    static constexpr std::size_t PAIRS = 255;

    Pair_page* next;
    std::array<std::byte, sizeof(Index_pair) - sizeof(void*)> unused; // pointers differ
    std::array<Index_pair, PAIRS> pairs;
};
static_assert(sizeof(Pair_page) == 4096);

// Owns all pages of a sort. A page that is given back is taken again before a new one, so splitting
// a bucket needs little more memory than the bucket has. Memory exhausted is thrown
// (std::bad_alloc).
class Pair_pages {
public:
    [[nodiscard]] Pair_page* take();
    void give_back(Pair_page* page);

private:
    struct Free {
        void operator()(Pair_page* slab) const;
    };

    void add_slab();

    std::vector<std::unique_ptr<Pair_page[], Free>> slabs_;
    std::size_t used_in_last_slab_ = 0;
    std::size_t last_slab_pages_ = 0;
    Pair_page* free_ = nullptr; // the pages that were given back, each linked to the next
};

// Pairs in the order in which they were added. Two pointers and no more: a thousand buckets take
// turns, and all of them should stay in the cache. Whether a page is full shows in the address of
// the next pair, so no count is needed.
class Pair_bucket {
public:
    void add(const Index_pair& pair, Pair_pages& pages) {
        if (is_full()) add_page(pages);
        // Prefetches the bucket's next cache line. Successive pairs go to different buckets, a
        // pattern that the processor's own prefetcher cannot follow.
        __builtin_prefetch(at_ + PREFETCH_PAIRS, 1);
        *at_++ = pair;
    }

    // The pairs of one of its pages.
    [[nodiscard]] std::span<const Index_pair> pairs_of(const Pair_page& page) const;
    [[nodiscard]] Pair_page* first_page() const { return first_; }
    [[nodiscard]] std::size_t size() const;
    // True when all pairs have the same hash.
    [[nodiscard]] bool is_uniform() const;

private:
    static constexpr std::size_t PREFETCH_PAIRS = 64 / sizeof(Index_pair); // a cache line

    // Also true of a bucket without pages, since null is a multiple of anything.
    [[nodiscard]] bool is_full() const {
        return std::bit_cast<std::uintptr_t>(at_) % sizeof(Pair_page) == 0;
    }
    [[nodiscard]] Pair_page* last_page() const;
    void add_page(Pair_pages& pages);

    Index_pair* at_ = nullptr; // where the next pair goes
    Pair_page* first_ = nullptr;
};

} // namespace tla
