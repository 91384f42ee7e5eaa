#include "scl/text/scl_normalize.hpp"

#include "scl/text/composer.hpp"
#include "scl/text/scl_utf.hpp"
#include "scl/text/unicode_tables.hpp"

#include <algorithm>

namespace scl {

namespace {

bool is_untouched(char16_t unit) {
    return (impl::UNIT_TRAITS[unit] & impl::UNIT_TOUCHED) == 0;
}

// Of texts from this length on, the size of the result is computed first. A string that grows while
// it is written holds the text twice for a moment; for a million units that is memory worth saving.
constexpr std::size_t LONG_UNITS = std::size_t{1} << 20;

// True when the character never combines with what is before it. The text on either side of a
// boundary can be normalised by itself (Unicode Standard Annex #15, section 9,
// https://www.unicode.org/reports/tr15/#Detecting_Normalization_Forms).
bool is_boundary(const impl::Properties& properties) {
    return properties.nfc_yes && properties.combining_class == 0;
}

struct Stretch {
    std::size_t end;
    bool is_whole; // it is all that was left of the text
};

// How far the text from `at` on is surely in NFC, by the quick check of the annex: each character
// has NFC_Quick_Check Yes, and combining classes do not fall except to 0. A stretch that is not the
// whole rest ends at its last boundary, since a later mark can change all characters from there on.
Stretch normal_stretch(std::u16string_view text, std::size_t at) {
    std::size_t boundary = at;
    std::uint8_t last_class = 0;
    while (at < text.size()) {
        const std::size_t here = at;
        if (is_untouched(text[at])) {
            last_class = 0;
            boundary = at++;
            continue;
        }
        const impl::Properties& next = impl::properties_of(scl_utf16_next(text, at));
        const bool in_order = next.combining_class == 0 || next.combining_class >= last_class;
        if (!next.nfc_yes || !in_order) return {boundary, false};
        last_class = next.combining_class;
        if (last_class == 0) boundary = here;
    }
    return {text.size(), true};
}

// The first boundary after the character at `at`.
std::size_t next_boundary(std::u16string_view text, std::size_t at) {
    std::size_t after = at;
    static_cast<void>(scl_utf16_next(text, after));
    do {
        at = after;
    } while (at < text.size() && !is_boundary(impl::properties_of(scl_utf16_next(text, after))));
    return at;
}

// The normal form of a text that begins with the stretch. Stretches in NFC are copied; each piece
// between two of them is composed by itself. Time is linear: no part of the text is gone over more
// than a few times.
std::u16string composed(std::u16string_view text, Stretch stretch) {
    std::u16string result;
    result.reserve(text.size() < LONG_UNITS ? text.size() : impl::Composer::most_units(text));
    impl::Composer composer(result);
    std::size_t at = 0;
    while (true) {
        result.append(text.substr(at, stretch.end - at));
        if (stretch.is_whole) return result;
        at = next_boundary(text, stretch.end);
        composer.compose(text.substr(stretch.end, at - stretch.end));
        stretch = normal_stretch(text, at);
    }
}

} // namespace

bool scl_can_normalize(std::u16string_view text) {
    // Nearly always there is none, and nothing needs to be paired.
    const auto first = std::ranges::find_if(text, scl_is_surrogate);
    for (auto at = static_cast<std::size_t>(first - text.begin()); at < text.size();) {
        if (scl_is_surrogate(scl_utf16_next(text, at))) return false;
    }
    return true;
}

std::size_t scl_joined_length(std::u16string_view text, std::size_t at) {
    return next_boundary(text, at) - at;
}

std::size_t scl_character_length(std::u16string_view text, std::size_t at) {
    std::size_t after = at;
    static_cast<void>(scl_utf16_next(text, after));
    return after - at;
}

bool impl::scl_is_untouched(std::u16string_view text) {
    return std::ranges::all_of(text, is_untouched);
}

bool scl_is_normalized(std::u16string_view text) {
    const Stretch stretch = normal_stretch(text, 0);
    return stretch.is_whole || composed(text, stretch) == text;
}

void scl_normalize(std::u16string_view in, std::u16string& out) {
    const Stretch stretch = normal_stretch(in, 0);
    if (stretch.is_whole) {
        out.assign(in);
    } else {
        out.assign(composed(in, stretch)); // in memory of its own: `in` may view `out`
    }
}

void scl_normalize(std::u16string_view in, std::u16string& out, Scl_status& /*status*/) {
    scl_normalize(in, out);
}

} // namespace scl
