#include "scl/text/scl_utf.hpp"

namespace scl {

namespace {

// The code point of a sequence of `length` bytes at `at`, its lead byte's marks taken off; 0 when
// the bytes after the lead are too few or no continuation bytes.
char32_t decode(std::string_view text, std::size_t at, std::size_t length, char32_t lead) {
    // 0 is no value that any of the leads can come to in a well-formed way, so it needs no flag.
    if (text.size() - at < length) return 0;
    char32_t code_point = lead;
    for (std::size_t i = 1; i < length; ++i) {
        const char32_t byte = static_cast<std::uint8_t>(text[at + i]);
        if ((byte & 0xC0U) != 0x80) return 0;
        code_point = (code_point << 6U) | (byte & 0x3FU);
    }
    return code_point;
}

// A lead or a continuation byte: its mark, and the bits of the code point from `shift` on.
char part(char32_t mark, char32_t code_point, unsigned shift) {
    return static_cast<char>(mark | (code_point >> shift));
}

char continuation(char32_t code_point, unsigned shift) {
    return part(0x80, code_point & (0x3FU << shift), shift);
}

} // namespace

char32_t impl::scl_utf8_next_long(std::string_view text, std::size_t& at) {
    // The lead gives the length; the value tells what is too long for it, a surrogate or too large.
    const char32_t lead = static_cast<std::uint8_t>(text[at]);
    char32_t code_point = 0;
    std::size_t length = 0;
    bool well_formed = false;
    // C0 and C1 would write ASCII in two bytes, F5 and above go beyond U+10FFFF.
    if (lead >= 0xC2 && lead < 0xE0) {
        length = 2;
        code_point = decode(text, at, length, lead & 0x1FU);
        well_formed = code_point != 0;
    } else if (lead >= 0xE0 && lead < 0xF0) {
        length = 3;
        code_point = decode(text, at, length, lead & 0x0FU);
        well_formed = code_point >= 0x800 && !scl_is_surrogate(code_point);
    } else if (lead >= 0xF0 && lead < 0xF5) {
        length = 4;
        code_point = decode(text, at, length, lead & 0x07U);
        well_formed = code_point >= 0x10000 && code_point <= 0x10FFFF;
    }
    // Byte by byte otherwise, so that what follows a stray byte is decoded by itself.
    at += well_formed ? length : 1;
    return well_formed ? code_point : 0xDC00 + lead;
}

char* scl_utf8_put(char* to, char32_t code_point) {
    if (scl_is_surrogate(code_point)) {
        // Those that stray bytes became; any other has no form that a reader would take.
        if (code_point >= 0xDC80 && code_point <= 0xDCFF) {
            *to++ = static_cast<char>(code_point - 0xDC00);
            return to;
        }
        code_point = 0xFFFD;
    }
    if (code_point < 0x80) {
        *to++ = static_cast<char>(code_point);
    } else if (code_point < 0x800) {
        *to++ = part(0xC0, code_point, 6);
        *to++ = continuation(code_point, 0);
    } else if (code_point < 0x10000) {
        *to++ = part(0xE0, code_point, 12);
        *to++ = continuation(code_point, 6);
        *to++ = continuation(code_point, 0);
    } else {
        *to++ = part(0xF0, code_point, 18);
        *to++ = continuation(code_point, 12);
        *to++ = continuation(code_point, 6);
        *to++ = continuation(code_point, 0);
    }
    return to;
}

} // namespace scl
