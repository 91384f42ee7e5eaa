#include "scl/text/scl_string.hpp"

#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"

#include <array>

namespace scl {

namespace {

constexpr std::size_t PIECE_BYTES = 8192;
constexpr std::u16string_view HEX_DIGITS = u"0123456789ABCDEF";

// How many bytes of a text to convert next, so that no character is cut: the piece ends before a
// byte that is no continuation byte (10xxxxxx). Four of them in a row are no UTF-8 and are
// converted byte by byte, so they may be cut anywhere.
std::size_t piece_size(std::string_view text) {
    if (text.size() <= PIECE_BYTES) return text.size();
    for (std::size_t size = PIECE_BYTES; size > PIECE_BYTES - 4; --size) {
        if ((static_cast<unsigned char>(text[size]) & 0xC0U) != 0x80) return size;
    }
    return PIECE_BYTES;
}

// Converts piece by piece. In one piece, resize() would write zeros to a unit of memory for each
// byte, and text of other scripts has fewer units than bytes; memory that is only reserved is not
// touched, so the system need not provide it.
void stow_long(std::string_view narrow, std::u16string& wide) {
    std::array<char16_t, PIECE_BYTES> units;
    std::u16string().swap(wide); // what an even longer text has used of it is given back
    wide.reserve(narrow.size());
    while (!narrow.empty()) {
        const std::size_t size = piece_size(narrow);
        wide.append(units.data(), scl_convert(narrow.substr(0, size), units.data()));
        narrow.remove_prefix(size);
    }
}

bool is_control(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

// A byte that was no UTF-8 is the lone surrogate U+DC00 + byte.
bool is_raw_byte(char32_t character) {
    return character >= 0xDC80 && character <= 0xDCFF;
}

} // namespace

// resize() fills what it adds. The string is not cleared before, so that it seldom has to.
void scl_stow(std::string_view narrow, std::u16string& wide) {
    if (narrow.size() > PIECE_BYTES) return stow_long(narrow, wide);
    if (wide.size() < narrow.size()) wide.resize(narrow.size());
    wide.resize(scl_convert(narrow, wide.data()));
}

void scl_wtos(std::u16string_view wide, std::string& narrow, bool replace) {
    if (replace) narrow.clear();
    scl_string_append(narrow, wide);
}

void scl_utf16_to_utf8(std::u16string_view wide, std::string& narrow) {
    scl_wtos(wide, narrow, true);
}

// Both kinds are shown by the low byte of their code point.
std::u16string scl_shown(std::u16string_view text) {
    std::u16string shown;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t from = at;
        const char32_t character = scl_utf16_next(text, at);
        if (is_control(character) || is_raw_byte(character)) {
            shown +=
                {u'\\', u'x', HEX_DIGITS[character >> 4U & 0xFU], HEX_DIGITS[character & 0xFU]};
        } else {
            shown += text.substr(from, at - from);
        }
    }
    return shown;
}

std::string scl_shown(std::string_view text) {
    std::u16string wide;
    scl_stow(text, wide);
    std::string shown;
    scl_wtos(scl_shown(wide), shown, true);
    return shown;
}

// By units: every white space character is one unit, and no surrogate is white space.
std::u16string_view scl_trimmed(std::u16string_view text) {
    while (!text.empty() && scl_is_white_space(text.back())) {
        text.remove_suffix(1);
    }
    while (!text.empty() && scl_is_white_space(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

void scl_trim(std::u16string& text) {
    const std::u16string_view trimmed = scl_trimmed(text);
    const auto before = static_cast<std::size_t>(trimmed.data() - text.data());
    text.resize(before + trimmed.size()); // first, so that less is moved
    text.erase(0, before);
}

// 0 at the end is no sign of it, since a text may hold U+0000. The index tells.
char32_t scl_utf16_to_utf32_char(std::u16string_view text, std::size_t& index) {
    if (index < text.size()) return scl_utf16_next(text, index);
    index = SCL_NPOS;
    return 0;
}

// A separator at the end leaves an empty last piece, which is dropped like any other: a schema may
// end in a semicolon.
void Scl_tokeniser::tokenise(std::u16string_view text, std::vector<std::u16string>& pieces) const {
    pieces.clear();
    for (;;) {
        const std::size_t end = text.find_first_of(separators_);
        const std::u16string_view piece = scl_trimmed(text.substr(0, end));
        if (!piece.empty()) pieces.emplace_back(piece);
        if (end == std::u16string_view::npos) return;
        text.remove_prefix(end + 1);
    }
}

} // namespace scl
