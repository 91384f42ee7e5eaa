#include "tla/sort/pair_cells.hpp"

#include "scl/io/scl_file.hpp"

#include <algorithm>
#include <new>
#include <utility>

namespace tla {

namespace {

// Few pairs shall not take a large page; from 2 MiB of them on, it is filled anyway.
constexpr std::size_t SMALL_SLAB_CELLS = 64;
constexpr std::size_t LARGE_SLAB_CELLS = scl::SCL_LARGE_PAGE / sizeof(Pair_cell);
constexpr std::size_t SMALL_SLABS = LARGE_SLAB_CELLS / SMALL_SLAB_CELLS;

} // namespace

Pair_cell* Pair_cells::take() {
    if (free_ != nullptr) {
        Pair_cell* const cell = free_;
        free_ = cell->next;
        return cell;
    }
    if (used_in_last_slab_ == last_slab_cells_) add_slab();
    return &slabs_.back()[used_in_last_slab_++];
}

// Aligned to large pages in any case, so that one way of freeing does for all, and to cells, which
// must lie at multiples of their size.
void Pair_cells::add_slab() {
    const bool is_large = slabs_.size() >= SMALL_SLABS;
    const std::size_t cells = is_large ? LARGE_SLAB_CELLS : SMALL_SLAB_CELLS;
    // Owned before the list grows, which may fail for lack of memory.
    std::unique_ptr<Pair_cell[], Free> slab(static_cast<Pair_cell*>(
        ::operator new (cells * sizeof(Pair_cell), std::align_val_t{scl::SCL_LARGE_PAGE})));
    slabs_.push_back(std::move(slab));
    if (is_large) {
        scl::scl_prefer_large_pages(std::as_writable_bytes(std::span(slabs_.back().get(), cells)));
    }
    last_slab_cells_ = cells;
    used_in_last_slab_ = 0;
}

void Pair_cells::Free::operator()(Pair_cell* slab) const {
    ::operator delete (slab, std::align_val_t{scl::SCL_LARGE_PAGE});
}

void Pair_cells::give_back(Pair_cell* cell) {
    cell->next = free_;
    free_ = cell;
}

std::span<const Index_pair> Pair_bucket::pairs_of(const Pair_cell& cell) const {
    const Index_pair* const begin = cell.pairs.data();
    return {begin, &cell == last_cell() ? at_ : begin + Pair_cell::PAIRS};
}

std::size_t Pair_bucket::size() const {
    std::size_t count = 0;
    for (const Pair_cell* cell = first_; cell != nullptr; cell = cell->next) {
        count += pairs_of(*cell).size();
    }
    return count;
}

bool Pair_bucket::is_uniform() const {
    for (const Pair_cell* cell = first_; cell != nullptr; cell = cell->next) {
        const std::span<const Index_pair> pairs = pairs_of(*cell);
        const std::uint64_t hash = first_->pairs[0].key_hash;
        const auto same = [hash](const Index_pair& pair) { return pair.key_hash == hash; };
        if (!std::all_of(pairs.begin(), pairs.end(), same)) return false;
    }
    return true;
}

void Pair_bucket::add_cell(Pair_cells& cells) {
    Pair_cell* const cell = cells.take();
    cell->next = nullptr;
    (first_ == nullptr ? first_ : last_cell()->next) = cell;
    at_ = cell->pairs.data();
}

// Of a bucket that is not empty: the cell that the last pair lies in.
Pair_cell* Pair_bucket::last_cell() const {
    const auto last_pair = std::bit_cast<std::uintptr_t>(at_ - 1);
    return std::bit_cast<Pair_cell*>(last_pair - last_pair % sizeof(Pair_cell));
}

} // namespace tla
