#include "scl/text/scl_string.hpp"

#include "scl/text/scl_utf.hpp"

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

// The conversions between UTF-8 and UTF-16, with a short way for each kind of text that is common.
namespace scl {

namespace {

// How many units are copied at once. Most texts are names and words, often shorter than eight
// units, so there are smaller blocks too. (scl::Scl_block does not fit: nothing can be read behind
// a text here, and the two sides have lanes of different sizes.)
constexpr std::size_t LARGE = 8;
constexpr std::size_t SMALL = 4;

// From any address, as text is not aligned.
template <class Unsigned, class Char>
Unsigned load(const Char* from) {
    Unsigned value = 0;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <std::size_t Size>
bool is_ascii_block(const char* bytes) {
    using Word = std::conditional_t<Size == LARGE, std::uint64_t, std::uint32_t>;
    return (load<Word>(bytes) & static_cast<Word>(0x8080808080808080U)) == 0;
}

template <std::size_t Size>
bool is_ascii_block(const char16_t* units) {
    std::uint64_t all = load<std::uint64_t>(units);
    if constexpr (Size == LARGE) all |= load<std::uint64_t>(units + SMALL);
    return (all & 0xFF80FF80FF80FF80U) == 0;
}

template <class Char>
bool is_ascii(Char c) {
    return static_cast<std::make_unsigned_t<Char>>(c) < 0x80;
}

// Copies a block if all of it is ASCII, and tells whether it is. Vector types, since the compiler
// turned a loop over units into single steps.
template <std::size_t Size, class To, class From>
bool copy_block(To* to, const From* from) {
    using From_block [[gnu::vector_size(LARGE * sizeof(From))]] = std::make_unsigned_t<From>;
    using To_block [[gnu::vector_size(LARGE * sizeof(To))]] = std::make_unsigned_t<To>;
    if (!is_ascii_block<Size>(from)) return false;
    From_block read{}; // a small block is half of one
    std::memcpy(&read, from, Size * sizeof(From));
    const auto converted = __builtin_convertvector(read, To_block);
    std::memcpy(to, &converted, Size * sizeof(To));
    return true;
}

// Copies the ASCII characters at the front of the text and returns their number. The last block
// ends where the text ends, and so may copy some units twice.
template <std::size_t Size, class To, class From>
std::size_t copy_ascii_in_blocks(To* to, const From* from, std::size_t size) {
    std::size_t at = 0;
    while (size - at >= Size && copy_block<Size>(to + at, from + at)) {
        at += Size;
    }
    const bool is_tail = size >= Size && size - at < Size;
    if (is_tail && copy_block<Size>(to + size - Size, from + size - Size)) return size;
    for (; at < size && is_ascii(from[at]); ++at) {
        to[at] = static_cast<To>(from[at]);
    }
    return at;
}

template <class To, class From>
std::size_t copy_ascii(To* to, const From* from, std::size_t size) {
    return size < LARGE ? copy_ascii_in_blocks<SMALL>(to, from, size)
                        : copy_ascii_in_blocks<LARGE>(to, from, size);
}

// Converts four bytes when they are two well-formed characters of two bytes, as in most scripts of
// letters from Greek to Arabic; tells whether they are. Both at once: the bits of a lead byte go
// above those of the byte behind it, which needs a little-endian processor. A character below
// U+0080 must not be spelled like this.
bool convert_two(const char* from, char16_t* to) {
    if constexpr (std::endian::native == std::endian::big) return false;
    const auto bytes = load<std::uint32_t>(from);
    if ((bytes & 0xC0E0C0E0U) != 0x80C080C0U) return false;
    const std::uint32_t units = (bytes & 0x001F001FU) << 6U | (bytes >> 8U & 0x003F003FU);
    if ((units & 0x0780U) == 0 || (units & 0x07800000U) == 0) return false;
    std::memcpy(to, &units, sizeof units);
    return true;
}

// Converts a well-formed character of two or three bytes, as nearly all text outside ASCII consists
// of, and gives their number; 0 when something else comes first. Table 3-7 of the Unicode Standard
// says what is well formed.
std::size_t convert_one(const char* from, std::size_t left, char16_t* to) {
    const auto bits = [from](std::size_t at, unsigned mask) {
        return static_cast<unsigned char>(from[at]) & mask;
    };
    if (left < 2 || bits(1, 0xC0) != 0x80) return 0;
    const unsigned lead = bits(0, 0xFF);
    if (lead >= 0xC2 && lead < 0xE0) {
        *to = static_cast<char16_t>(bits(0, 0x1F) << 6U | bits(1, 0x3F));
        return 2;
    }
    if (lead >= 0xF0 || lead < 0xE0 || left < 3 || bits(2, 0xC0) != 0x80) return 0;
    const unsigned unit = bits(0, 0x0F) << 12U | bits(1, 0x3F) << 6U | bits(2, 0x3F);
    if (unit < 0x800 || scl_is_surrogate(unit)) return 0;
    *to = static_cast<char16_t>(unit);
    return 3;
}

// An upper bound of the text's size in UTF-8, cheaper than the size itself: one byte a unit, two
// from U+0080 on, three from U+0800 on. (A surrogate pair takes four bytes and counts as six.)
std::size_t utf8_bound(std::u16string_view wide) {
    std::size_t size = wide.size();
    for (const char16_t unit : wide) {
        size += static_cast<std::size_t>(unit >= 0x80) + static_cast<std::size_t>(unit >= 0x800);
    }
    return size;
}

} // namespace

// Characters of one kind come in runs, so each way is tried where the one before has just ended. In
// text of other scripts, ASCII is mostly a single blank: blocks are for at least eight characters.
std::size_t scl_convert(std::string_view narrow, char16_t* wide) {
    const char* from = narrow.data();
    const char* const end = from + narrow.size();
    char16_t* to = wide;
    while (from != end) {
        const auto left = static_cast<std::size_t>(end - from);
        if (is_ascii(*from)) {
            if (left >= LARGE && is_ascii_block<LARGE>(from)) {
                const std::size_t ascii = copy_ascii(to, from, left);
                to += ascii;
                from += ascii;
            } else {
                *to++ = static_cast<char16_t>(*from++);
            }
        } else if (left >= SMALL && convert_two(from, to)) {
            to += 2;
            from += SMALL;
        } else if (const std::size_t length = convert_one(from, left, to)) {
            ++to;
            from += length;
        } else {
            std::size_t at = narrow.size() - left;
            to = scl_utf16_put(to, impl::scl_utf8_next_long(narrow, at));
            from = narrow.data() + at;
        }
    }
    return static_cast<std::size_t>(to - wide);
}

void scl_string_append(std::u16string& wide, std::string_view narrow) {
    const std::size_t start = wide.size();
    wide.resize(start + narrow.size());
    wide.resize(start + scl_convert(narrow, wide.data() + start));
}

// First as if all were ASCII, as most texts are: the result then has its final size at once.
void scl_string_append(std::string& narrow, std::u16string_view wide) {
    const std::size_t start = narrow.size();
    narrow.resize(start + wide.size());
    std::size_t at = copy_ascii(narrow.data() + start, wide.data(), wide.size());
    if (at == wide.size()) return;
    narrow.resize(start + at + utf8_bound(wide.substr(at)));
    char* to = narrow.data() + start + at;
    while (at < wide.size()) {
        while (at < wide.size() && !is_ascii(wide[at])) {
            to = scl_utf8_put(to, scl_utf16_next(wide, at));
        }
        const std::size_t ascii = copy_ascii(to, wide.data() + at, wide.size() - at);
        to += ascii;
        at += ascii;
    }
    narrow.resize(static_cast<std::size_t>(to - narrow.data()));
}

} // namespace scl
