#pragma once

#include "scl/text/scl_block.hpp"
#include "scl/text/scl_unicode.hpp"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

#pragma GCC visibility push(default) // installed

namespace scl {

// Text in memory: UTF-16 units (char16_t), or UTF-8 or ASCII bytes (char).
//
// Invariant: behind a text of char, SCL_BLOCK_BYTES more bytes can be read, whatever they hold. So
// the five bytes of "Smith" take one block, without a look at the length. Text of char16_t is a
// view of somebody's memory and has no such padding: ask has_block().
//
// Two pointers, so that it is passed in registers.
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
    for (const char* at = text.begin; at < text.end; at += SCL_BLOCK_BYTES) {
        const Scl_block block(at);
        const auto capitals = block.is_between('A', 'Z');
        (block + (capitals & ('a' - 'A'))).store(to);
        to += SCL_BLOCK_BYTES;
    }
}

// Whether bytes are ASCII. The last block may hold what lies behind the text: a byte there that is
// not ASCII does not count.
[[nodiscard]] inline bool scl_is_ascii(const Scl_text_span<char>& text) {
    const char* at = text.begin;
    std::uint32_t others = 0;
    for (; at < text.end && others == 0; at += SCL_BLOCK_BYTES) {
        others = Scl_block(at).top_bits();
    }
    return others == 0 || at - SCL_BLOCK_BYTES + std::countr_zero(others) >= text.end;
}

} // namespace scl

#pragma GCC visibility pop
