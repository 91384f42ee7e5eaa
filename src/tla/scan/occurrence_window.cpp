#include "tla/scan/occurrence_window.hpp"

#include <algorithm>

namespace tla {

namespace {

constexpr std::size_t LEAST_SLOTS = 1024;

} // namespace

Occurrence_window::Occurrence_window() : slots_(LEAST_SLOTS, Slot{0, NONE}) {}

// A large table is given back: the next text may be small, and clearing it would take longer than
// scanning that.
void Occurrence_window::clear() {
    if (used_ != 0) {
        slots_.resize(LEAST_SLOTS);
        std::ranges::fill(slots_, Slot{0, NONE});
    }
    used_ = 0;
    begin_ += entries_.size();
    entries_.clear();
}

std::size_t Occurrence_window::slot_of(std::uint64_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = static_cast<std::size_t>(hash >> 32U) & mask;
    while (slots_[slot].number != NONE && slots_[slot].hash != hash) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

std::uint64_t Occurrence_window::last_of(std::uint64_t hash) const {
    const std::uint64_t number = slots_[slot_of(hash)].number;
    return number != NONE && number >= begin_ ? number : NONE;
}

// Slots of values that are forgotten are dropped on the way; it grows when many are left.
void Occurrence_window::make_room() {
    std::vector<Slot> kept;
    for (const Slot& slot : slots_) {
        if (slot.number != NONE && slot.number >= begin_) kept.push_back(slot);
    }
    const bool grows = kept.size() * 4 > slots_.size();
    std::vector<Slot> slots(grows ? slots_.size() * 2 : slots_.size(), Slot{0, NONE});
    slots_.swap(slots);
    used_ = kept.size();
    for (const Slot& slot : kept) {
        slots_[slot_of(slot.hash)] = slot;
    }
}

void Occurrence_window::add(const Occurrence& occurrence) {
    if ((used_ + 1) * 2 > slots_.size()) make_room();
    Slot& slot = slots_[slot_of(occurrence.hash)];
    const bool is_known = slot.number != NONE && slot.number >= begin_;
    entries_.push_back({occurrence, is_known ? slot.number : NONE});
    if (slot.number == NONE) ++used_;
    slot = {occurrence.hash, end() - 1};
}

void Occurrence_window::forget_before(std::uint64_t word) {
    while (!entries_.empty() && entries_.front().occurrence.last_word < word) {
        entries_.pop_front();
        ++begin_;
    }
}

bool Occurrence_window::occurs(std::uint64_t hash, const Word_range& range) const {
    for (std::uint64_t number = last_of(hash); number != NONE && number >= begin_;
         number = at(number).previous) {
        if (range.holds(at(number).occurrence)) return true;
    }
    return false;
}

} // namespace tla
