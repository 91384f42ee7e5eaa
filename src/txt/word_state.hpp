#pragma once

#include "scl/text/scl_unicode.hpp"
#include "txt/word_rules.hpp"

#include <cstdint>

#pragma GCC visibility push(default) // installed

namespace txt::impl {

// The state of the word boundary rules at a position in a text, and whether the open segment is a
// trailer. All code that cuts text into tokens goes through here: Txt_tokeniser and
// txt_walk_tokens().
class Word_state {
public:
    using Class = scl::Scl_unicode_code_point_type;

    // Takes a character, given by its byte of the bit table. After `part` and `look`, pass the same
    // character again; after `roll_back`, the one for which `look` came back. For "e. g" the
    // answers are: e start, stop look, stop join, blank roll_back; and then, from the stop on, stop
    // part, stop start, blank part, ...
    //
    // One tailoring: a segment that starts with white space joins the trailer before it.
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

    // Whether any letter, digit or connector would start a segment or join the open one.
    [[nodiscard]] bool takes_runs() const { return WORD_RUNS[row_]; }
    // Takes a whole run, of which only the last unit matters to what follows. Only while
    // takes_runs() is true.
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
