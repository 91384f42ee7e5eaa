#include "txt/txt_tokeniser.hpp"

#include "scl/io/scl_endian.hpp"

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
        const auto& joining = impl::WORD_RUN_PROPERTIES;
        run_units[bits] = unit_class != scl::Scl_unicode_code_point_type::attached &&
                          std::find(joining.begin(), joining.end(), property) != joining.end();
    }
    return run_units;
}

constexpr Run_units RUN_UNITS = make_run_units();

std::uint8_t bits_of(char16_t unit) {
    return scl::impl::SCL_UNICODE_BIT_TABLE[unit];
}

// Units side by side; words are short, so there is a smaller number for the small ones. Signed,
// which is what processors compare in one step: units from U+8000 on are negative then and so, as
// they should be, in none of the ranges.
constexpr std::size_t LARGE = 8;
constexpr std::size_t SMALL = 4;
using Large_block [[gnu::vector_size(LARGE * UNIT_BYTES)]] = std::int16_t;
using Small_block [[gnu::vector_size(SMALL * UNIT_BYTES)]] = std::int16_t;

std::size_t leading_lanes(const Small_block& mask) {
    return static_cast<std::size_t>(std::countr_one(std::bit_cast<std::uint64_t>(mask))) / 16;
}

std::size_t leading_lanes(const Large_block& mask) {
    using Halves [[gnu::vector_size(sizeof mask)]] = std::uint64_t;
    const auto halves = std::bit_cast<Halves>(mask);
    const int low = std::countr_one(halves[0]);
    const int bits = low < 64 ? low : 64 + std::countr_one(halves[1]);
    return static_cast<std::size_t>(bits) / 16;
}

// How many units, from the first on, are ASCII letters, digits or underscores: all run units.
template <class Block>
std::size_t leading_word_units(const Block& units) {
    const Block folded = units | 0x20;
    const Block word =
        ((folded >= 'a') & (folded <= 'z')) | ((units >= '0') & (units <= '9')) | (units == '_');
    return leading_lanes(word);
}

// Goes through the leading ASCII run units in blocks, the last of which may overlap the one before,
// and returns how many they are. There may be more, but not after a block that holds something
// else. `take` is given each block and its place.
template <class Block, class Take>
std::size_t ascii_run(const std::byte* from, std::size_t limit, const Take& take) {
    constexpr std::size_t SIZE = sizeof(Block) / UNIT_BYTES;
    const auto take_block = [&](std::size_t at) {
        Block units;
        std::memcpy(&units, from + at * UNIT_BYTES, sizeof units);
        take(at, units);
        return leading_word_units(units);
    };
    std::size_t count = 0;
    while (limit - count >= SIZE) {
        const std::size_t more = take_block(count);
        count += more;
        if (more != SIZE) return count;
    }
    if (count == 0 || count == limit) return count;
    return limit - SIZE + take_block(limit - SIZE);
}

// How many of the units, `limit` at most, are leading run units. `take` is given them, in blocks
// and singly, each with its place, and maybe some of those that follow.
template <class Take>
std::size_t leading_run(const std::byte* from, std::size_t limit, const Take& take) {
    std::size_t count = limit < LARGE ? ascii_run<Small_block>(from, limit, take)
                                      : ascii_run<Large_block>(from, limit, take);
    for (; count < limit; ++count) {
        const auto unit = scl::scl_load_le<char16_t>(from + count * UNIT_BYTES);
        if (!RUN_UNITS[bits_of(unit)]) break;
        take(count, unit);
    }
    return count;
}

} // namespace

bool Txt_tokeniser::is_one_run(std::u16string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    const auto only_look = [](std::size_t, const auto&) {};
    return leading_run(bytes.data(), text.size(), only_look) == text.size();
}

std::size_t Txt_tokeniser::take_run(std::span<const std::byte> units, Txt_text_store& text,
                                    std::uint32_t& type, Txt_parse_operation& operation) {
    const bool starts = row_ == impl::WORD_ROW_START;
    if (starts) text.clear();
    const std::span<char16_t> room = text.room();
    const std::size_t limit = std::min(units.size() / UNIT_BYTES, room.size());
    const auto copy = [to = room.data()](std::size_t at, const auto& taken) {
        std::memcpy(to + at, &taken, sizeof taken);
    };
    const std::size_t count = leading_run(units.data(), limit, copy);
    if (count == 0) return 0;
    text.grown(count);
    operation = Txt_parse_operation::go_on;
    if (starts) {
        start(static_cast<Class>(bits_of(room.front()) & 7U), type);
        operation = Txt_parse_operation::start;
    }
    const std::size_t last = bits_of(room[count - 1]) >> 3U;
    row_ = impl::WORD_STEPS[impl::WORD_ROW_START][last].row;
    return count * UNIT_BYTES;
}

} // namespace txt
