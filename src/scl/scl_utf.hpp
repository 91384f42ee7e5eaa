#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// One code point at a time, out of and into UTF-8 and UTF-16. The mapping loses nothing: a byte
// that is not part of well-formed UTF-8 is the code point U+DC00 + byte (U+DC80 to U+DCFF), and
// back; a lone surrogate in UTF-16 is the code point of its own value.
namespace scl::impl {

[[nodiscard]] constexpr bool scl_is_lead(char32_t unit) {
    return (unit & 0xFFFFFC00U) == 0xD800;
}

[[nodiscard]] constexpr bool scl_is_trail(char32_t unit) {
    return (unit & 0xFFFFFC00U) == 0xDC00;
}

/// The code point at `at`, which is moved past it. `at` must be below the text's size.
[[nodiscard]] inline char32_t scl_utf16_next(std::u16string_view text, std::size_t& at) {
    const char32_t unit = text[at++];
    if (scl_is_lead(unit) && at < text.size() && scl_is_trail(text[at]))
        return 0x10000 + ((unit - 0xD800) << 10U) + (text[at++] - 0xDC00U);
    return unit;
}

/// Writes a code point as one or two units; gives the position after them.
[[nodiscard]] inline char16_t* scl_utf16_put(char16_t* to, char32_t code_point) {
    if (code_point < 0x10000) {
        *to++ = static_cast<char16_t>(code_point);
        return to;
    }
    *to++ = static_cast<char16_t>(0xD7C0 + (code_point >> 10U));
    *to++ = static_cast<char16_t>(0xDC00 + (code_point & 0x3FFU));
    return to;
}

/// As scl_utf8_next, for a byte of 0x80 or above. Table 3-7 of the Unicode Standard says which
/// sequences are well formed.
[[nodiscard]] char32_t scl_utf8_next_long(std::string_view text, std::size_t& at);

/// The code point at `at`, which is moved past it. `at` must be below the text's size.
[[nodiscard]] inline char32_t scl_utf8_next(std::string_view text, std::size_t& at) {
    const auto byte = static_cast<std::uint8_t>(text[at]);
    if (byte >= 0x80) return scl_utf8_next_long(text, at);
    ++at;
    return byte;
}

/// Writes a code point as one to four bytes; gives the position after them. U+DC80 to U+DCFF are
/// written as the one byte they stand for, other surrogates as U+FFFD.
[[nodiscard]] char* scl_utf8_put(char* to, char32_t code_point);

} // namespace scl::impl
