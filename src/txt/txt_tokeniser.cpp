#include "txt/txt_tokeniser.hpp"

#include "scl/scl_endian.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace txt {

namespace {

constexpr std::size_t UNIT_BYTES = 2;

// By what the bit table holds of a unit: whether it extends runs, and may as well start one.
using Run_units = std::array<bool, 256>;

constexpr Run_units make_run_units() {
    Run_units run_units{};
    for (std::size_t bits = 0; bits < run_units.size(); ++bits) {
        const auto unit_class = static_cast<scl::Scl_unicode_code_point_type>(bits & 7U);
        const auto property = static_cast<scl::Scl_word_break>(bits >> 3U);
        const auto& joining = impl::TXT_WORD_RUN_PROPERTIES;
        run_units[bits] = unit_class != scl::Scl_unicode_code_point_type::attached &&
                          std::find(joining.begin(), joining.end(), property) != joining.end();
    }
    return run_units;
}

constexpr Run_units RUN_UNITS = make_run_units();

std::uint8_t bits_of(char16_t unit) {
    return scl::impl::SCL_UNICODE_BIT_TABLE[unit];
}

// Units side by side. Signed, which is what processors compare in one step: units from U+8000 on
// are negative then and so, as they should be, in none of the ranges.
constexpr std::size_t LANES = 8;
using Units [[gnu::vector_size(LANES * UNIT_BYTES)]] = std::int16_t;

// How many lanes, from the first on, hold ASCII letters, digits or underscores: all run units.
std::size_t leading_word_lanes(const Units& units) {
    const Units folded = units | 0x20;
    const auto word =
        ((folded >= 'a') & (folded <= 'z')) | ((units >= '0') & (units <= '9')) | (units == '_');
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(word);
    const int low = std::countr_one(halves[0]);
    const int bits = low < 64 ? low : 64 + std::countr_one(halves[1]);
    return static_cast<std::size_t>(bits) / 16;
}

// Copies leading ASCII run units in blocks, as far as whole ones are there, and returns how many.
std::size_t copy_ascii_run(const std::byte* from, std::size_t limit, char16_t* to) {
    std::size_t count = 0;
    std::size_t lanes = LANES;
    for (; lanes == LANES && limit - count >= LANES; count += lanes) {
        Units units;
        std::memcpy(&units, from + count * UNIT_BYTES, sizeof units);
        std::memcpy(to + count, &units, sizeof units);
        lanes = leading_word_lanes(units);
    }
    return count;
}

// Copies the leading run units, `limit` at most, and returns how many there are.
std::size_t copy_run(const std::byte* from, std::size_t limit, char16_t* to) {
    std::size_t count = copy_ascii_run(from, limit, to);
    for (; count < limit; ++count) {
        const auto unit = scl::scl_load_le<char16_t>(from + count * UNIT_BYTES);
        if (!RUN_UNITS[bits_of(unit)]) break;
        to[count] = unit;
    }
    return count;
}

} // namespace

std::size_t Txt_tokeniser::take_run(std::span<const std::byte> units, Txt_text_store& text,
                                    std::uint32_t& type, Txt_parse_operation& operation) {
    const bool starts = row_ == impl::TXT_WORD_ROW_START;
    if (starts) text.clear();
    const std::span<char16_t> room = text.room();
    const std::size_t limit = std::min(units.size() / UNIT_BYTES, room.size());
    const std::size_t count = copy_run(units.data(), limit, room.data());
    if (count == 0) return 0;
    text.grown(count);
    operation = Txt_parse_operation::go_on;
    if (starts) {
        start(static_cast<Class>(bits_of(room.front()) & 7U), type);
        operation = Txt_parse_operation::start;
    }
    const std::size_t last = bits_of(room[count - 1]) >> 3U;
    row_ = impl::TXT_WORD_STEPS[impl::TXT_WORD_ROW_START][last].row;
    return count * UNIT_BYTES;
}

} // namespace txt
