#pragma once

#include "scl/text/scl_unicode.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

#pragma GCC visibility push(default) // installed

// The word boundary rules of Unicode Standard Annex #29 (15.0, default rules), compiled into a
// table of steps. The rules themselves stand in txt_word_rules.cpp.
namespace txt::impl {

enum class Word_action : std::uint8_t {
    start,     // the character starts a segment
    join,      // it belongs to the segment
    part,      // the segment ends before it
    look,      // it may belong to the segment: the characters after it decide
    roll_back, // they did not: the segment ends where `look` was answered
    finish,    // no segment is open, and no character follows
};

struct Word_step {
    Word_action action;
    std::uint8_t row; // where to go on from
};

// Columns: the word-break properties, then the end of the text.
inline constexpr std::size_t WORD_COLUMNS = 32;
inline constexpr std::size_t WORD_END_OF_TEXT = WORD_COLUMNS - 1;

// Rows: what the rules ask about the text before a position. In the first no segment is open; in
// the second the segment is known to end here.
inline constexpr std::uint8_t WORD_ROW_START = 0;
inline constexpr std::uint8_t WORD_ROW_CUT = 1;
inline constexpr std::size_t WORD_ROWS = 33;

using Word_steps = std::array<std::array<Word_step, WORD_COLUMNS>, WORD_ROWS>;
extern const Word_steps WORD_STEPS;

// Properties that join whatever of them stands before: WB5, WB8, WB9, WB10, WB13a and WB13b.
inline constexpr std::array WORD_RUN_PROPERTIES{scl::Scl_word_break::aletter,
                                                scl::Scl_word_break::numeric,
                                                scl::Scl_word_break::extend_num_let};
// The rows after which any of them joins, or starts a segment.
extern const std::array<bool, WORD_ROWS> WORD_RUNS;

} // namespace txt::impl

#pragma GCC visibility pop
