#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace scl {

// The version of the Unicode Standard that every table and rule here follows. The tables are made
// from that version's data only (tools/make_unicode_tables.py checks it).
inline constexpr std::string_view SCL_UNICODE_VERSION = "15.0.0";

// Class of a code point. White space is the property White_Space; everything else goes by general
// category.
enum class Scl_unicode_code_point_type : std::uint8_t {
    other = 0,       // Cc, Cs, Co, Cn
    letter = 1,      // Lu, Ll, Lt, Lm, Lo
    number = 2,      // Nd, Nl, No
    punctuation = 3, // Pc, Pd, Ps, Pe, Pi, Pf, Po
    symbol = 4,      // Sm, Sc, Sk, So
    attached = 5,    // Mn, Mc, Me, Cf: not visible by itself
    white_space = 6, // White_Space, whatever the category
};

// Word-break property of a code point (Unicode Standard Annex #29), with one tailoring: U+202F is
// `wsegspace`, so that no word holds white space. Extended_Pictographic, a second property that
// the same rules ask for, meets only Other and ALetter; so the last two values carry it.
enum class Scl_word_break : std::uint8_t {
    other = 0,
    aletter = 1,
    hebrew_letter = 2,
    katakana = 3,
    numeric = 4,
    extend_num_let = 5,
    mid_letter = 6,
    mid_num = 7,
    mid_num_let = 8,
    single_quote = 9,
    double_quote = 10,
    extend = 11,
    format = 12,
    zwj = 13,
    wsegspace = 14,
    cr = 15,
    lf = 16,
    newline = 17,
    regional_indicator = 18,
    pictographic = 19,         // Other, and Extended_Pictographic
    aletter_pictographic = 20, // ALetter, and Extended_Pictographic
};

// Letters, digits and connectors. Any of them joins any other before it: WB5, WB8, WB9, WB10, WB13a
// and WB13b.
inline constexpr std::array SCL_WORD_RUN_PROPERTIES{
    Scl_word_break::aletter, Scl_word_break::numeric, Scl_word_break::extend_num_let};

// Whether a character, by its byte of the bit table, is one of these and no mark.
[[nodiscard]] constexpr bool scl_joins_runs(std::uint8_t bits) {
    const auto property = static_cast<Scl_word_break>(bits >> 3U);
    return static_cast<Scl_unicode_code_point_type>(bits & 7U) !=
               Scl_unicode_code_point_type::attached &&
           std::ranges::find(SCL_WORD_RUN_PROPERTIES, property) != SCL_WORD_RUN_PROPERTIES.end();
}

namespace impl {

// The table holds the Basic Multilingual Plane, so that a 16-bit unit needs no bounds check.
inline constexpr std::size_t SCL_UNICODE_BIT_TABLE_LEN = 0x10000;

// One byte for each code point below SCL_UNICODE_BIT_TABLE_LEN: the low three bits are the class
// (Scl_unicode_code_point_type), the high five the word-break property (Scl_word_break).
extern const std::array<std::uint8_t, SCL_UNICODE_BIT_TABLE_LEN> SCL_UNICODE_BIT_TABLE;

// The class of any code point; meant for those beyond the table. A value above U+10FFFF is
// `other`.
[[nodiscard]] Scl_unicode_code_point_type scl_get_icu_char_type(char32_t code_point);

// The byte of the bit table for a code point that the table does not hold.
[[nodiscard]] std::uint8_t scl_unicode_bits_beyond(char32_t code_point);

} // namespace impl

// The byte of the bit table, made up for a code point that the table does not hold.
[[nodiscard]] inline std::uint8_t scl_unicode_bits(char32_t code_point) {
    return code_point < impl::SCL_UNICODE_BIT_TABLE_LEN ? impl::SCL_UNICODE_BIT_TABLE[code_point]
                                                        : impl::scl_unicode_bits_beyond(code_point);
}

// The class of any code point; `other` for a lone surrogate and for a value above U+10FFFF.
[[nodiscard]] inline Scl_unicode_code_point_type scl_code_point_type(char32_t code_point) {
    return static_cast<Scl_unicode_code_point_type>(scl_unicode_bits(code_point) & 7U);
}

// True for a code point that has the property White_Space. All of them are single 16-bit units.
[[nodiscard]] inline bool scl_is_white_space(char32_t code_point) {
    return scl_code_point_type(code_point) == Scl_unicode_code_point_type::white_space;
}

// True for a decimal digit of any script (general category Nd). These are the numbers that words
// are cut at like digits; of all that are cut so, U+066B alone, a separator, is no number.
[[nodiscard]] inline bool scl_is_decimal_digit(char32_t code_point) {
    constexpr auto DIGIT =
        static_cast<std::uint8_t>(static_cast<unsigned>(Scl_word_break::numeric) << 3U |
                                  static_cast<unsigned>(Scl_unicode_code_point_type::number));
    return scl_unicode_bits(code_point) == DIGIT;
}

} // namespace scl

#pragma GCC visibility pop
