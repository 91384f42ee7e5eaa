#include "scl/scl_string.hpp"

#include "scl/scl_unicode.hpp"
#include "scl/scl_utf.hpp"

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace scl {

namespace {

constexpr std::size_t BLOCK = 8;

bool is_ascii_block(const char* bytes) {
    std::uint64_t block = 0;
    std::memcpy(&block, bytes, sizeof block);
    return (block & 0x8080808080808080U) == 0;
}

bool is_ascii_block(const char16_t* units) {
    std::uint64_t halves[2] = {};
    std::memcpy(halves, units, sizeof halves);
    return ((halves[0] | halves[1]) & 0xFF80FF80FF80FF80U) == 0;
}

template <class Char>
bool is_ascii(Char c) {
    return static_cast<std::make_unsigned_t<Char>>(c) < 0x80;
}

// Copies a block when it is wholly ASCII; tells whether it is.
template <class To, class From>
bool copy_block(To* to, const From* from) {
    if (!is_ascii_block(from)) return false;
    for (std::size_t i = 0; i < BLOCK; ++i)
        to[i] = static_cast<To>(from[i]);
    return true;
}

// Copies the ASCII characters that the text begins with, blockwise as far as that goes; gives
// their number.
template <class To, class From>
std::size_t copy_ascii(To* to, const From* from, std::size_t size) {
    std::size_t at = 0;
    while (size - at >= BLOCK && copy_block(to + at, from + at))
        at += BLOCK;
    const bool is_tail = at > 0 && size - at < BLOCK; // then the last block overlaps what is done
    if (is_tail && copy_block(to + size - BLOCK, from + size - BLOCK)) return size;
    for (; at < size && is_ascii(from[at]); ++at)
        to[at] = static_cast<To>(from[at]);
    return at;
}

// An upper bound of the bytes a text takes: a unit from U+0080 takes one byte more, one from U+0800
// two. (A surrogate pair, four bytes, is counted as six.)
std::size_t utf8_bound(std::u16string_view wide) {
    std::size_t size = wide.size();
    for (const char16_t unit : wide)
        size += static_cast<std::size_t>(unit >= 0x80) + static_cast<std::size_t>(unit >= 0x800);
    return size;
}

} // namespace

void scl_string_append(std::u16string& wide, std::string_view narrow) {
    const std::size_t start = wide.size();
    wide.resize(start + narrow.size()); // no byte becomes more than one unit
    char16_t* to = wide.data() + start;
    for (std::size_t at = 0; at < narrow.size();) {
        const std::size_t ascii = copy_ascii(to, narrow.data() + at, narrow.size() - at);
        to += ascii;
        at += ascii;
        while (at < narrow.size() && !is_ascii(narrow[at]))
            to = impl::scl_utf16_put(to, impl::scl_utf8_next_long(narrow, at));
    }
    wide.resize(static_cast<std::size_t>(to - wide.data()));
}

void scl_string_append(std::string& narrow, std::u16string_view wide) {
    const std::size_t start = narrow.size();
    narrow.resize(start + wide.size());
    std::size_t at = copy_ascii(narrow.data() + start, wide.data(), wide.size());
    if (at == wide.size()) return;
    narrow.resize(start + at + utf8_bound(wide.substr(at)));
    char* to = narrow.data() + start + at;
    while (at < wide.size()) {
        while (at < wide.size() && !is_ascii(wide[at]))
            to = impl::scl_utf8_put(to, impl::scl_utf16_next(wide, at));
        const std::size_t ascii = copy_ascii(to, wide.data() + at, wide.size() - at);
        to += ascii;
        at += ascii;
    }
    narrow.resize(static_cast<std::size_t>(to - narrow.data()));
}

void scl_stow(std::string_view narrow, std::u16string& wide) {
    wide.clear();
    scl_string_append(wide, narrow);
}

void scl_wtos(std::u16string_view wide, std::string& narrow, bool replace) {
    if (replace) narrow.clear();
    scl_string_append(narrow, wide);
}

void scl_utf16_to_utf8(std::u16string_view wide, std::string& narrow) {
    scl_wtos(wide, narrow, true);
}

std::u16string_view scl_trimmed(std::u16string_view text) {
    while (!text.empty() && scl_is_white_space(text.back()))
        text.remove_suffix(1);
    while (!text.empty() && scl_is_white_space(text.front()))
        text.remove_prefix(1);
    return text;
}

void scl_trim(std::u16string& text) {
    const std::u16string_view trimmed = scl_trimmed(text);
    const auto before = static_cast<std::size_t>(trimmed.data() - text.data());
    text.resize(before + trimmed.size());
    text.erase(0, before);
}

char32_t scl_utf16_to_utf32_char(std::u16string_view text, std::size_t& index) {
    if (index < text.size()) return impl::scl_utf16_next(text, index);
    index = SCL_NPOS;
    return 0;
}

} // namespace scl
