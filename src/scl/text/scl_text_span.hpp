#pragma once

#include "scl/text/scl_unicode.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace scl {

// Text in memory, of char for ASCII bytes or of char16_t for UTF-16 units, and how far memory may
// be read beyond its end. Most texts are short; with a block readable from its start, a text needs
// one look, whatever its length, and no branch that depends on it.
template <typename Unit>
struct Scl_text_span {
    const Unit* begin = nullptr;
    const Unit* end = nullptr;
    const Unit* readable_end = nullptr; // at or after `end`, of the same memory

    Scl_text_span() = default;
    Scl_text_span(const Unit* from, const Unit* to, const Unit* readable_to)
        : begin(from), end(to), readable_end(readable_to) {}
    // Nothing can be read beyond a view.
    explicit Scl_text_span(std::basic_string_view<Unit> text)
        : Scl_text_span(text.data(), text.data() + text.size(), text.data() + text.size()) {}

    [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(end - begin); }
    [[nodiscard]] bool empty() const { return begin == end; }
    // From `at` on, in units.
    [[nodiscard]] std::size_t readable(const Unit* at) const {
        return static_cast<std::size_t>(readable_end - at);
    }
    [[nodiscard]] std::basic_string_view<Unit> view() const { return {begin, size()}; }
};

// The text without the white space (property White_Space) at its two ends. All white space is of
// single units.
template <typename Unit>
[[nodiscard]] Scl_text_span<Unit> scl_trimmed(Scl_text_span<Unit> text) {
    const auto is_space = [](Unit unit) {
        return scl_is_white_space(static_cast<std::make_unsigned_t<Unit>>(unit));
    };
    while (!text.empty() && is_space(text.end[-1])) {
        --text.end;
    }
    while (!text.empty() && is_space(*text.begin)) {
        ++text.begin;
    }
    return text;
}

// Whether a text of bytes is ASCII. Looks at 16 bytes at a time.
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
    const auto left = static_cast<std::size_t>(text.end - at);
    if (text.readable(at) >= WORD) {
        // What lies behind the text is shifted out; for no byte at all, in two steps.
        const std::size_t unwanted = 4 * (WORD - left);
        bits |= (load(at) << unwanted) << unwanted;
    } else {
        for (; at != text.end; ++at) {
            bits |= static_cast<std::uint8_t>(*at);
        }
    }
    return (bits & TOP_BITS) == 0;
}

} // namespace scl
