#include "scl/scl_compare.hpp"

#include "scl/scl_unicode_tables.hpp"
#include "scl/scl_utf.hpp"

namespace scl {

namespace {

char32_t fold(char32_t code_point) {
    const std::int32_t change = impl::scl_properties(code_point).to_fold;
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

int scl_utf8_compare_nc(std::string_view a, std::string_view b) {
    return compare(a, b, impl::scl_utf8_next);
}

int scl_utf16_compare_nc(std::u16string_view a, std::u16string_view b) {
    return compare(a, b, impl::scl_utf16_next);
}

} // namespace scl
