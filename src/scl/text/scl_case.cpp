#include "scl/text/scl_case.hpp"

#include "scl/text/scl_normalize.hpp"
#include "scl/text/scl_utf.hpp"
#include "scl/text/unicode_tables.hpp"

#include <string_view>

namespace scl {

namespace {

constexpr char16_t CAPITAL_I_WITH_DOT = 0x130;
constexpr std::u16string_view SMALL_I_WITH_DOT = u"i\u0307";
constexpr char16_t CAPITAL_SIGMA = 0x3A3;
constexpr char16_t FINAL_SIGMA = 0x3C2;

void lower_ascii(std::u16string& text) {
    for (char16_t& unit : text) {
        unit = static_cast<char16_t>(unit + (unit >= u'A' && unit <= u'Z' ? u'a' - u'A' : 0));
    }
}

// True when the first character from `at` on that is not case-ignorable is cased. As no sigma is
// case-ignorable, each character is looked at for one sigma at most.
bool is_before_cased(std::u16string_view text, std::size_t at) {
    while (at < text.size()) {
        const auto& properties = impl::properties_of(impl::scl_utf16_next(text, at));
        if (!properties.case_ignorable) return properties.cased;
    }
    return false;
}

// Writes out the one character that grows, so that all others are mapped in their places. For the
// sigmas around it nothing changes: the i is cased as well, and the dot is case-ignorable.
void expand_capital_i(std::u16string& text) {
    if (text.find(CAPITAL_I_WITH_DOT) == std::u16string::npos) return;
    std::u16string expanded;
    for (const char16_t unit : text) {
        if (unit == CAPITAL_I_WITH_DOT) {
            expanded += SMALL_I_WITH_DOT;
        } else {
            expanded += unit;
        }
    }
    text.assign(expanded);
}

void lower_any(std::u16string& text) {
    expand_capital_i(text);
    bool is_after_cased = false; // what came last and is not case-ignorable is cased
    for (std::size_t at = 0; at < text.size();) {
        char16_t* const here = text.data() + at;
        const char32_t code_point = impl::scl_utf16_next(text, at);
        const auto& properties = impl::properties_of(code_point);
        char32_t small = code_point + static_cast<char32_t>(properties.to_lower);
        if (code_point == CAPITAL_SIGMA && is_after_cased && !is_before_cased(text, at)) {
            small = FINAL_SIGMA;
        }
        static_cast<void>(impl::scl_utf16_put(here, small)); // of the same length
        if (!properties.case_ignorable) is_after_cased = properties.cased;
    }
}

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
        if (next_a == next_b) continue;
        const char32_t folded_a = fold(next_a);
        const char32_t folded_b = fold(next_b);
        if (folded_a != folded_b) return folded_a < folded_b ? -1 : 1;
    }
    return static_cast<int>(at_a < a.size()) - static_cast<int>(at_b < b.size());
}

} // namespace

void scl_lower(std::u16string& text) {
    if (impl::scl_all_bits(text) < 0x80) {
        lower_ascii(text);
        return;
    }
    const bool was_normal = scl_can_normalize(text) && scl_is_normalized(text);
    lower_any(text);
    if (was_normal) impl::scl_normalize(text, text);
}

int scl_utf8_compare_nc(std::string_view a, std::string_view b) {
    return compare(a, b, impl::scl_utf8_next);
}

int scl_utf16_compare_nc(std::u16string_view a, std::u16string_view b) {
    return compare(a, b, impl::scl_utf16_next);
}

} // namespace scl
