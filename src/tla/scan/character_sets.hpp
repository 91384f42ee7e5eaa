#pragma once

#include "scl/text/scl_unicode.hpp"

namespace tla {

// Sets of characters that the readings of a text go by. L, M and Nd are general categories.

[[nodiscard]] inline bool is_letter(char32_t c) { // L
    return scl::scl_code_point_type(c) == scl::Scl_unicode_code_point_type::letter;
}

[[nodiscard]] inline bool is_digit(char32_t c) { // Nd
    return scl::scl_is_decimal_digit(c);
}

// M. Words are cut before none of them; of what is not visible by itself, only the non-joiner and
// the tag characters share that without being marks.
[[nodiscard]] inline bool is_mark(char32_t c) {
    const std::uint8_t bits = scl::scl_unicode_bits(c);
    const bool is_attached = static_cast<scl::Scl_unicode_code_point_type>(bits & 7U) ==
                             scl::Scl_unicode_code_point_type::attached;
    const bool extends =
        static_cast<scl::Scl_word_break>(bits >> 3U) == scl::Scl_word_break::extend;
    const bool is_format = c == 0x200C || (c >= 0xE0020 && c <= 0xE007F);
    return is_attached && extends && !is_format;
}

// A to Z and a to z, the letters that a group of a number may have.
[[nodiscard]] constexpr bool is_plain_letter(char32_t c) {
    return (c | 0x20U) >= U'a' && (c | 0x20U) <= U'z' && c < 0x80;
}

} // namespace tla
