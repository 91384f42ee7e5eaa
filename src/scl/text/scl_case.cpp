#include "scl/text/scl_case.hpp"

#include "scl/text/scl_normalize.hpp"
#include "scl/text/scl_utf.hpp"
#include "scl/text/unicode_tables.hpp"

#include <algorithm>
#include <string_view>

namespace scl {

namespace {

// The only unconditional mapping to several characters, and the only condition that depends on no
// language, of SpecialCasing.txt; the generator of the tables makes sure of the first.
constexpr std::u16string_view SMALL_I_WITH_DOT = u"i\u0307";
constexpr char16_t CAPITAL_SIGMA = 0x3A3;
constexpr char16_t FINAL_SIGMA = 0x3C2;

// Without a branch, so that the compiler does many units in one step.
void lower_ascii(std::u16string& text) {
    for (char16_t& unit : text) {
        unit = static_cast<char16_t>(unit + (unit >= u'A' && unit <= u'Z' ? u'a' - u'A' : 0));
    }
}

// The condition Final_Sigma (Unicode Standard, table 3-17): whether the nearest character on one
// side that is not case-ignorable is cased. A sigma that ends a word has such a letter before it
// and none behind it. The search stops at the next sigma, which is not case-ignorable, so
// lower-casing stays linear. The text before a sigma is lower-case already; that changes neither
// property.

bool is_after_cased(std::u16string_view text, std::size_t at) {
    while (at > 0) {
        const auto& properties = impl::properties_of(scl_utf16_previous(text, at));
        if (!properties.case_ignorable) return properties.cased;
    }
    return false;
}

bool is_before_cased(std::u16string_view text, std::size_t at) {
    while (at < text.size()) {
        const auto& properties = impl::properties_of(scl_utf16_next(text, at));
        if (!properties.case_ignorable) return properties.cased;
    }
    return false;
}

// Replaces each U+0130, the one character that grows, by its two units. All others can then be
// mapped in place. Final_Sigma is not affected: the i is cased like the capital, the dot
// case-ignorable.
void expand_capital_i(std::u16string& text) {
    std::u16string expanded;
    expanded.reserve(text.size() +
                     static_cast<std::size_t>(std::ranges::count(text, impl::CAPITAL_I_WITH_DOT)));
    for (const char16_t unit : text) {
        if (unit == impl::CAPITAL_I_WITH_DOT) {
            expanded += SMALL_I_WITH_DOT;
        } else {
            expanded += unit;
        }
    }
    text.swap(expanded);
}

// For text below FIRST_MARK, which holds no sigma.
void lower_by_unit(std::u16string& text) {
    bool grows = false;
    for (char16_t& unit : text) {
        grows |= unit == impl::CAPITAL_I_WITH_DOT;
        unit = impl::SMALL_LETTERS[unit];
    }
    if (grows) expand_capital_i(text);
}

char32_t small_form(std::u16string_view text, std::size_t at, char32_t code_point,
                    std::size_t after) {
    if (code_point == CAPITAL_SIGMA && is_after_cased(text, at) && !is_before_cased(text, after)) {
        return FINAL_SIGMA;
    }
    return code_point + static_cast<char32_t>(impl::properties_of(code_point).to_lower);
}

// Maps the character at `at`, whose small form has the same length, and moves `at` past it. True
// when it changed and what follows is no plain character but one that normalisation may touch.
bool lower_one(std::u16string& text, std::size_t& at) {
    const std::size_t here = at;
    const char32_t code_point = scl_utf16_next(text, at);
    const char32_t small = small_form(text, here, code_point, at);
    static_cast<void>(scl_utf16_put(text.data() + here, small));
    return small != code_point && at < text.size() &&
           (impl::UNIT_TRAITS[text[at]] & impl::UNIT_TOUCHED) != 0;
}

// Maps any text. False if a text that was in NFC surely still is. A letter composes only with marks
// behind it, and no mapping makes or removes a mark. So only a letter that changed in front of a
// mark can need composing (J with U+030C becomes U+01F0), or a U+0130, whose dot is a mark of its
// own.
bool lower_any(std::u16string& text) {
    bool may_compose = false;
    for (std::size_t at = 0; at < text.size();) {
        if ((impl::UNIT_TRAITS[text[at]] & impl::UNIT_LOWERS) == 0) {
            ++at;
        } else if (text[at] == impl::CAPITAL_I_WITH_DOT) {
            expand_capital_i(text); // all that there are
            may_compose = true;
        } else if (lower_one(text, at)) {
            may_compose = true;
        }
    }
    return may_compose;
}

// Lower-cases ASCII, and text below the first combining mark: nothing there composes. False for
// other text, which is left alone.
bool lower_plain(std::u16string& text) {
    const std::uint16_t bits = scl_all_bits(text);
    if (bits >= impl::FIRST_MARK) return false;
    if (bits < 0x80) {
        lower_ascii(text);
    } else {
        lower_by_unit(text);
    }
    return true;
}

// Simple foldings only: a full one can change the length, and callers compare lengths first.
char32_t fold(char32_t code_point) {
    const std::int32_t change = impl::properties_of(code_point).to_fold;
    return code_point + static_cast<char32_t>(change);
}

// `next` takes the code point at a position and moves the position past it.
template <class Text, class Next>
int compare(Text a, Text b, Next next) {
    std::size_t at_a = 0;
    std::size_t at_b = 0;
    while (at_a < a.size() && at_b < b.size()) {
        const char32_t next_a = next(a, at_a);
        const char32_t next_b = next(b, at_b);
        if (next_a == next_b) continue; // the usual case needs no properties
        const char32_t folded_a = fold(next_a);
        const char32_t folded_b = fold(next_b);
        if (folded_a != folded_b) return folded_a < folded_b ? -1 : 1;
    }
    return static_cast<int>(at_a < a.size()) - static_cast<int>(at_b < b.size());
}

} // namespace

// Whether the text was in NFC must be known before it changes. Of most texts, scl_is_plain() tells.
void scl_lower(std::u16string& text) {
    if (lower_plain(text)) return;
    const bool was_normal =
        scl_is_plain(text) || (scl_can_normalize(text) && scl_is_normalized(text));
    if (lower_any(text) && was_normal) scl_normalize(text, text);
}

void scl_lower_normalized(std::u16string& text) {
    if (!lower_plain(text) && lower_any(text)) scl_normalize(text, text);
}

int scl_utf8_compare_nc(std::string_view a, std::string_view b) {
    return compare(a, b, scl_utf8_next);
}

int scl_utf16_compare_nc(std::u16string_view a, std::u16string_view b) {
    return compare(a, b, scl_utf16_next);
}

} // namespace scl
