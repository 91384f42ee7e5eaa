#include "txt/txt_tokeniser.hpp"

#include "scl/scl_endian.hpp"

#include <algorithm>
#include <array>

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

// Copies the leading run units, `limit` at most, and returns how many there are.
std::size_t copy_run(const std::byte* from, std::size_t limit, char16_t* to) {
    std::size_t count = 0;
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
