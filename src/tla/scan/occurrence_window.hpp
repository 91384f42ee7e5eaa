#pragma once

#include "tla/scan/occurrence.hpp"

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace tla {

// The words that a field may occur among.
struct Word_range {
    std::uint64_t first;
    std::uint64_t last;
    [[nodiscard]] bool holds(const Occurrence& occurrence) const {
        return occurrence.first.word >= first && occurrence.last_word <= last;
    }
};

// The occurrences near the end of what has been read of a text, in the order in which they were
// found, and by their values.
class Occurrence_window {
public:
    struct Entry {
        Occurrence occurrence;
        std::uint64_t previous; // the number of the last one before it of the same value, or NONE
        std::uint64_t least;    // no later one ends before this word
        std::uint64_t most;     // and neither it nor an earlier one behind this
        // How many words behind the previous one it begins and ends; 0 where that is not the same.
        // In a text that repeats itself it mostly is, for all that occurs, and for long.
        std::uint64_t shift;
        std::uint64_t run; // the first number from which on all up to this one have that shift
    };
    static constexpr std::uint64_t NONE = ~std::uint64_t{0};

    Occurrence_window();

    void clear();
    // Its value is a hash that nobody outside can choose. Neither it nor any that is added later
    // ends before the word `least`, which does not descend.
    void add(const Occurrence& occurrence, std::uint64_t least);
    // Forgets those in front that end before the word.
    void forget_before(std::uint64_t word);

    // Numbers count up and stay when others are forgotten.
    [[nodiscard]] std::uint64_t begin() const { return begin_; }
    [[nodiscard]] std::uint64_t end() const { return begin_ + entries_.size(); }
    [[nodiscard]] Entry& at(std::uint64_t number) {
        return entries_[static_cast<std::size_t>(number - begin_)];
    }
    [[nodiscard]] const Entry& at(std::uint64_t number) const {
        return entries_[static_cast<std::size_t>(number - begin_)];
    }
    // Those from this number on, not before begin(), end behind the word.
    [[nodiscard]] std::uint64_t end_within(std::uint64_t last_word) const;
    // The number of the last one of a value; NONE when there is none.
    [[nodiscard]] std::uint64_t last_of(std::uint64_t hash) const;
    [[nodiscard]] bool occurs(std::uint64_t hash, const Word_range& range) const;

private:
    struct Slot {
        std::uint64_t hash;
        std::uint64_t number; // NONE where nothing stands
    };

    [[nodiscard]] std::size_t slot_of(std::uint64_t hash) const;
    void make_room();

    std::deque<Entry> entries_;
    std::uint64_t begin_ = 0;
    std::vector<Slot> slots_; // a power of two of them, at most half of them used
    std::size_t used_ = 0;
};

} // namespace tla
