#include "scl/text/scl_unicode.hpp"

#include "scl/text/unicode_tables.hpp"

namespace scl::impl {

// Out of line: text beyond the Basic Multilingual Plane is rare, and a search in two stages would
// only be in the way of what is common.
std::uint8_t scl_unicode_bits_beyond(char32_t code_point) {
    return properties_of(code_point).bits;
}

Scl_unicode_code_point_type scl_get_icu_char_type(char32_t code_point) {
    return scl_code_point_type(code_point);
}

} // namespace scl::impl
