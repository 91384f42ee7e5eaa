#pragma once

#include "scl/text/scl_block.hpp"
#include "scl/text/scl_text_span.hpp"
#include "scl/text/scl_unicode.hpp"
#include "txt/word_rules.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#pragma GCC visibility push(default) // installed

// Runs of letters, digits and connectors, as nearly all words are. Each of them joins the one
// before (SCL_WORD_RUN_PROPERTIES), so that a run needs no step of the rules for each character.
//
// Twins: runs and single steps. Tested by Token_values.OfBytesAreThoseOfUnits and
// Word_break.RandomTextsAsTheSlowModel.
namespace txt::impl {

// Whether a unit belongs to runs, by its byte of the bit table.
using Run_units = std::array<bool, 256>;

constexpr Run_units make_run_units() {
    Run_units run_units{};
    for (std::size_t bits = 0; bits < run_units.size(); ++bits) {
        run_units[bits] = scl::scl_joins_runs(static_cast<std::uint8_t>(bits));
    }
    return run_units;
}
inline constexpr Run_units RUN_UNITS = make_run_units();

// By memcpy, since the units of a buffer need not be aligned.
template <typename Unit>
[[nodiscard]] std::uint8_t unit_bits(const Unit* from) {
    std::make_unsigned_t<Unit> unit = 0;
    std::memcpy(&unit, from, sizeof unit); // NOLINT: never null where there is a unit
    return scl::impl::SCL_UNICODE_BIT_TABLE[unit];
}

// How many units of a block, from the first on, are ASCII letters, digits or underscores.
template <typename Unit>
[[nodiscard]] std::size_t leading_word_units(const Unit* from) {
    const scl::Scl_block block(from);
    const auto letters = (block | ' ').is_between('a', 'z'); // the bit that capitals lack
    return (letters | block.is_between('0', '9') | block.equals('_')).leading_lanes();
}

// Whether the text is one run that fits a block, as most values are. False says nothing: the text
// may be a run all the same.
template <typename Unit>
[[nodiscard]] bool is_short_run(scl::Scl_text_span<Unit> text) {
    return text.size() - 1 < scl::SCL_BLOCK_UNITS<Unit> && text.has_block(text.begin) &&
           leading_word_units(text.begin) >= text.size();
}

// How many units from `at` on belong to a run. First block by block, as far as there are whole
// blocks of ASCII word characters. A run of bytes that ends inside a block ends there. A run of
// 16-bit units may go on with a letter that is not ASCII, so the rest is looked up unit by unit.
template <typename Unit>
[[nodiscard]] inline std::size_t run_length(scl::Scl_text_span<Unit> text, const Unit* at) {
    const auto size = static_cast<std::size_t>(text.end - at);
    std::size_t count = 0;
    while (count < size && text.has_block(at + count)) {
        const std::size_t more = leading_word_units(at + count);
        count += more;
        if (more == scl::SCL_BLOCK_UNITS<Unit>) continue;
        if (sizeof(Unit) == 1 || count >= size) return std::min(count, size);
        break;
    }
    while (count < size && RUN_UNITS[unit_bits(at + count)]) {
        ++count;
    }
    return std::min(count, size);
}

} // namespace txt::impl

#pragma GCC visibility pop
