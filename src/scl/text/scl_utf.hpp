#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#pragma GCC visibility push(default) // installed

// One code point at a time, out of and into UTF-8 and UTF-16. The mapping loses nothing: a byte
// that is not part of well-formed UTF-8 is the code point U+DC00 + byte (U+DC80 to U+DCFF), and
// back; a lone surrogate in UTF-16 is the code point of its own value.
namespace scl {

inline constexpr char32_t SCL_FIRST_SURROGATE = 0xD800;

[[nodiscard]] constexpr bool scl_is_surrogate(char32_t code_point) {
    return (code_point & 0xFFFFF800U) == SCL_FIRST_SURROGATE;
}

[[nodiscard]] constexpr bool scl_is_lead(char32_t unit) {
    return (unit & 0xFFFFFC00U) == 0xD800;
}

[[nodiscard]] constexpr bool scl_is_trail(char32_t unit) {
    return (unit & 0xFFFFFC00U) == 0xDC00;
}

// The code point at `at`, which is moved past it. `at` must be below the text's size.
[[nodiscard]] inline char32_t scl_utf16_next(std::u16string_view text, std::size_t& at) {
    const char32_t unit = text[at++];
    if (scl_is_lead(unit) && at < text.size() && scl_is_trail(text[at])) {
        return 0x10000 + ((unit - 0xD800) << 10U) + (text[at++] - 0xDC00U);
    }
    return unit;
}

// The code point before `at`, which is moved in front of it. `at` must be above 0.
[[nodiscard]] inline char32_t scl_utf16_previous(std::u16string_view text, std::size_t& at) {
    const char32_t unit = text[--at];
    if (scl_is_trail(unit) && at > 0 && scl_is_lead(text[at - 1])) {
        return 0x10000 + ((text[--at] - 0xD800U) << 10U) + (unit - 0xDC00);
    }
    return unit;
}

// Writes a code point as one or two units; gives the position after them.
[[nodiscard]] inline char16_t* scl_utf16_put(char16_t* to, char32_t code_point) {
    if (code_point < 0x10000) {
        *to++ = static_cast<char16_t>(code_point);
        return to;
    }
    *to++ = static_cast<char16_t>(0xD7C0 + (code_point >> 10U));
    *to++ = static_cast<char16_t>(0xDC00 + (code_point & 0x3FFU));
    return to;
}

namespace impl {

// As scl_utf8_next, for a byte of 0x80 or above. Table 3-7 of the Unicode Standard says which
// sequences are well formed.
[[nodiscard]] char32_t scl_utf8_next_long(std::string_view text, std::size_t& at);

} // namespace impl

// The code point at `at`, which is moved past it. `at` must be below the text's size.
[[nodiscard]] inline char32_t scl_utf8_next(std::string_view text, std::size_t& at) {
    const auto byte = static_cast<std::uint8_t>(text[at]);
    if (byte >= 0x80) return impl::scl_utf8_next_long(text, at);
    ++at;
    return byte;
}

// Writes a code point as one to four bytes; gives the position after them. U+DC80 to U+DCFF are
// written as the one byte that they carry, other surrogates as U+FFFD.
[[nodiscard]] char* scl_utf8_put(char* to, char32_t code_point);

// All bits that occur in the units of a text: one look at all of it that shows whether it is ASCII.
// Below a power of two, every unit is below it too; the other way round this holds only for powers
// of two. Looks at four units at a time.
[[nodiscard]] inline std::uint16_t scl_all_bits(std::u16string_view text) {
    std::uint64_t bits = 0;
    const auto add = [&](std::size_t at, std::size_t count) {
        std::uint64_t units = 0;
        std::memcpy(&units, text.data() + at, count * sizeof(char16_t));
        bits |= units;
    };
    std::size_t at = 0;
    for (; text.size() - at > 4; at += 4) {
        add(at, 4);
    }
    if (text.size() >= 4) {
        add(text.size() - 4, 4); // some of them once more
    } else {
        for (; at < text.size(); ++at) {
            add(at, 1);
        }
    }
    bits |= bits >> 32U;
    return static_cast<std::uint16_t>(bits | (bits >> 16U));
}

} // namespace scl

#pragma GCC visibility pop
