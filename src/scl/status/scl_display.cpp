#include "scl/status/scl_display.hpp"

#include "scl/text/scl_string.hpp"

namespace scl {

namespace {

// A byte that was no UTF-8 is U+DC00 + byte in wide text. The same unit is also the second half of
// some pairs.
bool is_raw_byte(char16_t unit) {
    return unit >= 0xDC80 && unit <= 0xDCFF;
}

bool is_control(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F);
}

} // namespace

// For both kinds the number shown is the byte's or the control character's own.
void scl_append_displayed(std::u16string& shown, std::u16string_view text) {
    constexpr std::u16string_view HEX_DIGITS = u"0123456789ABCDEF";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const bool in_pair = i > 0 && (text[i - 1] & 0xFC00) == 0xD800;
        if (is_control(unit) || (is_raw_byte(unit) && !in_pair)) {
            shown += {u'\\', u'x', HEX_DIGITS[unit >> 4U & 0xFU], HEX_DIGITS[unit & 0xFU]};
        } else {
            shown += unit;
        }
    }
}

std::string scl_displayed(std::u16string_view text) {
    std::u16string shown;
    scl_append_displayed(shown, text);
    std::string narrow;
    scl_wtos(shown, narrow, true);
    return narrow;
}

std::string scl_displayed(std::string_view bytes) {
    std::u16string text;
    scl_stow(bytes, text);
    return scl_displayed(text);
}

} // namespace scl
