#pragma once

#include "scl/text/scl_unicode.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

// The few places that use instructions of particular processors beyond what the compiler makes of
// vectors. Without them the same comes out.
#if defined(__SSE2__) && !defined(DSMAKE_PORTABLE)
#define SCL_WITH_SSE2 1
#include <emmintrin.h>
#else
#define SCL_WITH_SSE2 0
#endif

#pragma GCC visibility push(default) // installed

namespace scl {

// A block of text, in bytes, that is looked at in one step.
inline constexpr std::size_t SCL_BLOCK_BYTES = 16;
template <typename Unit>
inline constexpr std::size_t SCL_BLOCK_UNITS = SCL_BLOCK_BYTES / sizeof(Unit);

// Text in memory: of char16_t for UTF-16 units, as in a view, or of char for UTF-8 or ASCII bytes,
// with a block readable behind them. Most values are short; that block lets them be looked at in
// one step, whatever their length. Two pointers, so that it is passed in registers.
template <typename Unit>
struct Scl_text_span {
    const Unit* begin = nullptr;
    const Unit* end = nullptr;

    [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(end - begin); }
    [[nodiscard]] bool empty() const { return begin == end; }
    [[nodiscard]] std::basic_string_view<Unit> view() const { return {begin, size()}; }

    // Whether a whole block can be read from `at` on.
    [[nodiscard]] bool has_block(const Unit* at) const {
        return sizeof(Unit) == 1 || static_cast<std::size_t>(end - at) >= SCL_BLOCK_UNITS<Unit>;
    }
};

[[nodiscard]] inline Scl_text_span<char16_t> scl_span_of(std::u16string_view text) {
    return {text.data(), text.data() + text.size()};
}

// The text without the white space (property White_Space) at its two ends. All white space is of
// single units, and all in ASCII is below the blank or the blank itself.
template <typename Unit>
[[nodiscard]] Scl_text_span<Unit> scl_trimmed(Scl_text_span<Unit> text) {
    const auto is_space = [](Unit unit) {
        const auto code_point = static_cast<std::make_unsigned_t<Unit>>(unit);
        return (sizeof(Unit) > 1 || code_point <= ' ') && scl_is_white_space(code_point);
    };
    while (!text.empty() && is_space(text.end[-1])) {
        --text.end;
    }
    while (!text.empty() && is_space(*text.begin)) {
        ++text.begin;
    }
    return text;
}

// Lower-cases ASCII bytes into memory that has room for whole blocks.
inline void scl_lower_ascii(const Scl_text_span<char>& text, char* to) {
    using Block [[gnu::vector_size(SCL_BLOCK_BYTES)]] = std::int8_t;
    for (const char* at = text.begin; at < text.end; at += SCL_BLOCK_BYTES) {
        Block bytes;
        std::memcpy(&bytes, at, sizeof bytes);
        const auto capital = (bytes > 'A' - 1) & (bytes < 'Z' + 1); // all ones, or zero
        bytes += capital & ('a' - 'A');
        std::memcpy(to, &bytes, sizeof bytes);
        to += SCL_BLOCK_BYTES;
    }
}

// Whether bytes are ASCII. Eight at a time; of the last eight, those behind the text are shifted
// out, in two steps, as there may be none before.
[[nodiscard]] inline bool scl_is_ascii(const Scl_text_span<char>& text) {
    constexpr std::uint64_t TOP_BITS = 0x8080808080808080;
    constexpr std::size_t WORD = sizeof(std::uint64_t);
    const auto load = [](const char* from) {
        std::uint64_t word = 0;
        std::memcpy(&word, from, WORD);
        return word;
    };
    const char* at = text.begin;
    std::uint64_t bits = 0;
    for (; static_cast<std::size_t>(text.end - at) > WORD; at += WORD) {
        bits |= load(at);
    }
    const std::size_t unwanted = 4 * (WORD - static_cast<std::size_t>(text.end - at));
    bits |= (load(at) << unwanted) << unwanted;
    return (bits & TOP_BITS) == 0;
}

} // namespace scl

#pragma GCC visibility pop
