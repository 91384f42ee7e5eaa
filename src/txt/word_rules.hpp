#pragma once

#include "scl/text/scl_unicode.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

#pragma GCC visibility push(default) // installed

// The word boundary rules of Unicode Standard Annex #29 (15.0, default rules;
// https://www.unicode.org/reports/tr29/tr29-41.html#Word_Boundary_Rules), compiled into a table of
// steps: a state machine with a row for each state and a column for each word-break property. The
// rules themselves stand in word_rules.cpp. Tested by tests/word_break_test.cpp, with the annex's
// own test file and with a slow model of the rules.
namespace txt::impl {

enum class Word_action : std::uint8_t {
    start,     // the character starts a segment
    join,      // it belongs to the segment
    part,      // the segment ends before it
    look,      // it may belong to the segment, as the stop in "e.g": what follows decides
    roll_back, // what followed did not fit: the segment ends where `look` was answered
    finish,    // no segment is open, and no character follows
};

struct Word_step {
    Word_action action;
    std::uint8_t row; // where to go on from
};

// Columns: the word-break properties, then the end of the text.
inline constexpr std::size_t WORD_COLUMNS = 32;
inline constexpr std::size_t WORD_END_OF_TEXT = WORD_COLUMNS - 1;

// Rows: what the rules need to know of the text before a position. In row START no segment is open;
// in row CUT the segment ends here, whatever follows.
inline constexpr std::uint8_t WORD_ROW_START = 0;
inline constexpr std::uint8_t WORD_ROW_CUT = 1;
inline constexpr std::size_t WORD_ROWS = 33;

using Word_steps = std::array<std::array<Word_step, WORD_COLUMNS>, WORD_ROWS>;
extern const Word_steps WORD_STEPS;

// The rows in which any of SCL_WORD_RUN_PROPERTIES joins the open segment or starts one.
extern const std::array<bool, WORD_ROWS> WORD_RUNS;

} // namespace txt::impl

#pragma GCC visibility pop
