#include "tla/sort/pair_cells.hpp"

#include <algorithm>

namespace tla {

Pair_cell* Pair_cells::take() {
    if (free_ != nullptr) {
        Pair_cell* const cell = free_;
        free_ = cell->next;
        return cell;
    }
    if (used_in_last_slab_ == SLAB_CELLS) {
        slabs_.push_back(std::make_unique_for_overwrite<Pair_cell[]>(SLAB_CELLS));
        used_in_last_slab_ = 0;
    }
    return &slabs_.back()[used_in_last_slab_++];
}

void Pair_cells::give_back(Pair_cell* cell) {
    cell->next = free_;
    free_ = cell;
}

std::span<const Index_pair> Pair_bucket::pairs_of(const Pair_cell& cell) const {
    const Index_pair* const begin = cell.pairs.data();
    return {begin, &cell == last_ ? at_ : begin + Pair_cell::PAIRS};
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
    (last_ == nullptr ? first_ : last_->next) = cell;
    last_ = cell;
    at_ = cell->pairs.data();
    end_ = at_ + Pair_cell::PAIRS;
}

} // namespace tla
