#pragma once

#include "scl/text/scl_unicode.hpp"
#include "txt/word_rules.hpp"

#include <cstdint>

#pragma GCC visibility push(default) // installed

namespace txt::impl {

// Where the rules are in a text: what they need to know of it up to a position, and whether the
// segment open there is a trailer. Whoever cuts a text into tokens asks this about each character,
// or about each run, and about nothing else.
class Word_state {
public:
    using Class = scl::Scl_unicode_code_point_type;

    // What a character does, given by its byte of the bit table. After `part`, `look` and
    // `roll_back` it is not taken yet and must be given again: after `roll_back` the one where
    // `look` was answered.
    //
    // One tailoring: a segment that starts with white space joins a trailer, so that together they
    // are one.
    Word_action take(std::uint8_t bits) {
        const std::size_t property = bits >> 3U;
        const bool is_space = static_cast<Class>(bits & 7U) == Class::white_space;
        Word_step step = WORD_STEPS[row_][property];
        if (step.action == Word_action::part && in_trailer_ && is_space) {
            step = {Word_action::join, WORD_STEPS[WORD_ROW_START][property].row};
        }
        if (step.action == Word_action::start) in_trailer_ = is_space;
        row_ = step.row;
        return step.action;
    }

    // What the end of the text does: `part`, `roll_back` or `finish`.
    Word_action take_end() {
        const Word_step step = WORD_STEPS[row_][WORD_END_OF_TEXT];
        row_ = step.row;
        return step.action;
    }

    // Whether any run unit would start a segment or join the open one.
    [[nodiscard]] bool takes_runs() const { return WORD_RUNS[row_]; }
    // All of a run of which this is the last unit. Only while it takes runs.
    void take_run(std::uint8_t last_bits) {
        if (!is_open()) in_trailer_ = false;
        row_ = WORD_STEPS[WORD_ROW_START][last_bits >> 3U].row;
    }

    // Whether there is a segment that has not ended yet.
    [[nodiscard]] bool is_open() const { return row_ != WORD_ROW_START; }
    [[nodiscard]] bool in_trailer() const { return in_trailer_; }

private:
    std::uint8_t row_ = WORD_ROW_START;
    bool in_trailer_ = false;
};

} // namespace txt::impl

#pragma GCC visibility pop
