#include "tla/scan/occurrence_window.hpp"

#include <algorithm>

// Occurrences come and go at the ends of a queue. A hash table leads from a value to its last
// occurrence, and each of these to the one before; links that lead out of the queue are dead, so
// that forgetting costs nothing in the table.
namespace tla {

namespace {

// Enough for the values within a hundred words; little to clear for each text.
constexpr std::size_t LEAST_SLOTS = 1024;

// Both ends have to move alike: words within may be others in number.
std::uint64_t shift_between(const Occurrence& before, const Occurrence& behind) {
    const std::uint64_t shift = behind.first.word - before.first.word;
    return behind.last_word - before.last_word == shift ? shift : 0;
}

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

// Linear probing, half full at most: the hashes are secret, so that nobody can fill a row of slots.
std::size_t Occurrence_window::slot_of(std::uint64_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = static_cast<std::size_t>(hash >> 32U) & mask;
    while (slots_[slot].number != NONE && slots_[slot].hash != hash) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

// A slot of a value that was forgotten is as good as none.
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

// Invariant: a slot leads to the last occurrence of its hash, and `previous` from each to the one
// before, down to the first that is still in the queue.
void Occurrence_window::add(const Occurrence& occurrence, std::uint64_t least) {
    if ((used_ + 1) * 2 > slots_.size()) make_room();
    Slot& slot = slots_[slot_of(occurrence.hash)];
    const bool is_known = slot.number != NONE && slot.number >= begin_;
    Entry entry{occurrence, is_known ? slot.number : NONE, least, occurrence.last_word, 0, end()};
    if (is_known) entry.shift = shift_between(at(slot.number).occurrence, occurrence);
    if (!entries_.empty()) {
        const Entry& before = entries_.back();
        // How far any of those up to here reaches: a search from the back can stop early.
        entry.most = std::max(entry.most, before.most);
        if (before.shift == entry.shift) entry.run = before.run;
    }
    entries_.push_back(entry);
    if (slot.number == NONE) ++used_;
    slot = {occurrence.hash, end() - 1};
}

// They end in ascending order but for a few words within a chunk; one that stays too long does no
// harm.
void Occurrence_window::forget_before(std::uint64_t word) {
    while (!entries_.empty() && entries_.front().occurrence.last_word < word) {
        entries_.pop_front();
        ++begin_;
    }
}

// Where a long value may still go on, keys in front of it wait for its end, and what stands behind
// their reach is many times what stands within.
std::uint64_t Occurrence_window::end_within(std::uint64_t last_word) const {
    if (entries_.empty() || entries_.back().least <= last_word) return end();
    const auto behind = std::ranges::upper_bound(entries_, last_word, {}, &Entry::least);
    return begin_ + static_cast<std::uint64_t>(behind - entries_.begin());
}

// From the last one back.
bool Occurrence_window::occurs(std::uint64_t hash, const Word_range& range) const {
    for (std::uint64_t number = last_of(hash); number != NONE && number >= begin_;
         number = at(number).previous) {
        if (range.holds(at(number).occurrence)) return true;
    }
    return false;
}

} // namespace tla
