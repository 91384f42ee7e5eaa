#include "scl/scl_lower.hpp"

#include "scl/scl_normalize.hpp"
#include "scl/scl_unicode_tables.hpp"
#include "scl/scl_utf.hpp"

namespace scl {

namespace {

constexpr char32_t CAPITAL_I_WITH_DOT = 0x130;
constexpr char32_t COMBINING_DOT = 0x307;
constexpr char32_t CAPITAL_SIGMA = 0x3A3;
constexpr char32_t SMALL_SIGMA = 0x3C3;
constexpr char32_t FINAL_SIGMA = 0x3C2;

bool is_ascii(std::u16string_view text) {
    char32_t all = 0;
    for (const char16_t unit : text)
        all |= unit;
    return all < 0x80;
}

void lower_ascii(std::u16string& text) {
    for (char16_t& unit : text)
        unit = static_cast<char16_t>(unit + (unit >= u'A' && unit <= u'Z' ? u'a' - u'A' : 0));
}

/// True when the first character from `at` on that is not case-ignorable is cased. As no sigma is
/// case-ignorable, each character is looked at for one sigma at most.
bool is_before_cased(std::u16string_view text, std::size_t at) {
    while (at < text.size()) {
        const auto& properties = impl::scl_properties(impl::scl_utf16_next(text, at));
        if (!properties.case_ignorable) return properties.cased;
    }
    return false;
}

std::u16string lowered(std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size());
    const auto append = [&result](char32_t code_point) {
        char16_t units[2] = {};
        result.append(units, impl::scl_utf16_put(units, code_point));
    };
    bool is_after_cased = false; // what came last and is not case-ignorable is cased
    for (std::size_t at = 0; at < text.size();) {
        const char32_t code_point = impl::scl_utf16_next(text, at);
        const auto& properties = impl::scl_properties(code_point);
        if (code_point == CAPITAL_I_WITH_DOT) {
            append(U'i');
            append(COMBINING_DOT);
        } else if (code_point == CAPITAL_SIGMA) {
            append(is_after_cased && !is_before_cased(text, at) ? FINAL_SIGMA : SMALL_SIGMA);
        } else {
            append(code_point + static_cast<char32_t>(properties.to_lower));
        }
        if (!properties.case_ignorable) is_after_cased = properties.cased;
    }
    return result;
}

} // namespace

void scl_lower(std::u16string& text) {
    if (is_ascii(text)) {
        lower_ascii(text);
        return;
    }
    const std::u16string result = lowered(text);
    const bool has_lost_form =
        !scl_is_normalized(result) && scl_can_normalize(text) && scl_is_normalized(text);
    if (has_lost_form)
        impl::scl_normalize(result, text);
    else
        text.assign(result);
}

} // namespace scl
