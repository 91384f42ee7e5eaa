#pragma once

#include "scl/text/scl_text_span.hpp"
#include "scl/text/scl_unicode.hpp"
#include "txt/word_rules.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#pragma GCC visibility push(default) // installed

// Runs of letters, digits and connectors, which nearly all words are. Whatever of them comes first,
// the next one joins it, so that a run needs no step of the rules for each character.
namespace txt::impl {

// By what the bit table holds of a unit: whether it extends runs, and may as well start one.
using Run_units = std::array<bool, 256>;

constexpr Run_units make_run_units() {
    Run_units run_units{};
    for (std::size_t bits = 0; bits < run_units.size(); ++bits) {
        const auto unit_class = static_cast<scl::Scl_unicode_code_point_type>(bits & 7U);
        const auto property = static_cast<scl::Scl_word_break>(bits >> 3U);
        run_units[bits] =
            unit_class != scl::Scl_unicode_code_point_type::attached &&
            std::ranges::find(WORD_RUN_PROPERTIES, property) != WORD_RUN_PROPERTIES.end();
    }
    return run_units;
}
inline constexpr Run_units RUN_UNITS = make_run_units();

// Wherever it lies: a buffer's units need not be aligned.
template <typename Unit>
[[nodiscard]] std::uint8_t unit_bits(const Unit* from) {
    std::make_unsigned_t<Unit> unit = 0;
    std::memcpy(&unit, from, sizeof unit); // NOLINT: never null where there is a unit
    return scl::impl::SCL_UNICODE_BIT_TABLE[unit];
}

using Block_mask [[gnu::vector_size(scl::SCL_BLOCK_BYTES)]] = std::uint64_t;

// How many bytes of a block, from the first on, are all ones.
[[nodiscard]] inline std::size_t leading_ones(const Block_mask& mask) {
#if SCL_WITH_SSE2
    const int bits = _mm_movemask_epi8(std::bit_cast<__m128i>(mask));
    return static_cast<std::size_t>(std::countr_one(static_cast<unsigned>(bits)));
#else
    const int low = std::countr_one(mask[0]);
    const int bits = low < 64 ? low : 64 + std::countr_one(mask[1]);
    return static_cast<std::size_t>(bits) / 8;
#endif
}

// How many units of a block, from the first on, are ASCII letters, digits or underscores.
template <typename Unit>
[[nodiscard]] std::size_t leading_word_units(const Unit* from) {
    using Lane = std::conditional_t<sizeof(Unit) == 1, std::uint8_t, std::uint16_t>;
    using Signed_lane = std::make_signed_t<Lane>;
    using Block [[gnu::vector_size(scl::SCL_BLOCK_BYTES)]] = Lane;
    using Signed_block [[gnu::vector_size(scl::SCL_BLOCK_BYTES)]] = Signed_lane;
    Block units;
    std::memcpy(&units, from, sizeof units); // NOLINT: never null where there is a block
    // A range moved down to the least signed number needs one comparison, with its upper end.
    constexpr Signed_lane LEAST = std::numeric_limits<Signed_lane>::min();
    const auto from_to = [](const Block& lanes, char first, char last) {
        const Block moved = lanes + static_cast<Lane>(LEAST - first);
        return std::bit_cast<Signed_block>(moved) <
               static_cast<Signed_lane>(LEAST + last - first + 1);
    };
    const Block folded = units | Lane{0x20};
    const auto word = from_to(folded, 'a', 'z') | from_to(units, '0', '9') | (units == Lane{'_'});
    return leading_ones(std::bit_cast<Block_mask>(word)) / sizeof(Unit);
}

// Whether the text is one run, of no more units than a block: so are most values, and it takes one
// look to see it. False may be wrong.
template <typename Unit>
[[nodiscard]] bool is_short_run(scl::Scl_text_span<Unit> text) {
    return text.size() - 1 < scl::SCL_BLOCK_UNITS<Unit> && text.has_block(text.begin) &&
           leading_word_units(text.begin) >= text.size();
}

// How many units from `at` on are run units. Blocks first, as far as they can be read and are
// ASCII; one that ends inside a block ends for good if the text is ASCII, and is looked at singly
// if not.
template <typename Unit>
[[nodiscard]] std::size_t run_length(scl::Scl_text_span<Unit> text, const Unit* at) {
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
