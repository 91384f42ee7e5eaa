#include "shown.hpp"

#include "scl/text/scl_string.hpp"
#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"

#include <cstddef>
#include <limits>

// What comes from a text must not move a terminal's cursor, break a line or pretend to be something
// else: control characters and stray bytes are shown by their numbers.
namespace dsscan {

namespace {

constexpr std::size_t MOST_CHARACTERS = 100;
constexpr std::string_view REPLACEMENT = "\xEF\xBF\xBD"; // U+FFFD
constexpr std::string_view MORE = "\xE2\x80\xA6";        // U+2026

void append_hex(std::string& to, std::string_view prefix, std::string_view digits,
                unsigned char byte) {
    to.append(prefix) += {digits[byte >> 4U], digits[byte & 0xFU]};
}

// Those of ISO 8859 as well, which some terminals obey.
bool is_control(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

// Calls `take(code point, its bytes)`; a byte of its own is a surrogate.
template <typename Take>
void each_character(std::string_view text, const Take& take) {
    std::u16string wide;
    scl::scl_stow(text, wide);
    std::string bytes;
    for (std::size_t at = 0; at < wide.size();) {
        const std::size_t from = at;
        const char32_t c = scl::scl_utf16_next(wide, at);
        scl::scl_wtos(std::u16string_view(wide).substr(from, at - from), bytes, true);
        if (!take(c, std::string_view(bytes))) return;
    }
}

// Counted as written, so that a long stretch of white space ends a quotation as well.
std::string shown(std::string_view text, std::size_t most, bool is_whole) {
    std::string line;
    std::size_t characters = 0;
    bool after_space = false;
    each_character(text, [&](char32_t c, std::string_view bytes) {
        if (characters++ == most) {
            is_whole = false;
            return false;
        }
        const bool is_space = scl::scl_is_white_space(c);
        // A stretch of white space is one blank, so that a quotation stays on its line.
        if (is_space) {
            if (!after_space) line += ' ';
        } else if (is_control(c) || scl::scl_is_surrogate(c)) {
            for (const char byte : bytes) {
                append_hex(line, "\\x", "0123456789ABCDEF", static_cast<unsigned char>(byte));
            }
        } else {
            if (c == U'"' || c == U'\\') line += '\\';
            line += bytes;
        }
        after_space = is_space;
        return true;
    });
    if (!is_whole) line += MORE;
    return line;
}

// By the short form where JSON has one.
void append_control(std::string& json, char c) {
    constexpr std::string_view HAVE_LETTERS = "\b\t\n\f\r";
    constexpr std::string_view LETTERS = "btnfr";
    if (const std::size_t at = HAVE_LETTERS.find(c); at != std::string_view::npos) {
        json += {'\\', LETTERS[at]};
    } else {
        append_hex(json, "\\u00", "0123456789abcdef", static_cast<unsigned char>(c));
    }
}

} // namespace

std::string shown_in_line(std::string_view text, bool is_whole) {
    return shown(text, MOST_CHARACTERS, is_whole);
}

std::string shown_name(std::string_view name) {
    return shown(name, std::numeric_limits<std::size_t>::max(), true);
}

std::string json_string(std::string_view text) {
    std::string json = "\"";
    each_character(text, [&json](char32_t c, std::string_view bytes) {
        if (c < 0x20) {
            append_control(json, static_cast<char>(c));
            // JSON is UTF-8: a byte of its own has no form in it.
        } else if (scl::scl_is_surrogate(c)) {
            json += REPLACEMENT;
        } else {
            if (c == U'"' || c == U'\\') json += '\\';
            json += bytes;
        }
        return true;
    });
    return json + '"';
}

} // namespace dsscan
