#include "txt/txt_visible_text.hpp"

#include "scl/scl_unicode.hpp"
#include "scl/scl_utf.hpp"

namespace txt {

namespace {

bool is_visible(char32_t code_point) {
    return scl::scl_code_point_type(code_point) != scl::Scl_unicode_code_point_type::attached;
}

} // namespace

std::u16string txt_visible_text(std::u16string_view text) {
    std::u16string visible;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t from = at;
        if (is_visible(scl::impl::scl_utf16_next(text, at))) {
            visible.append(text.substr(from, at - from));
        }
    }
    return visible;
}

std::size_t txt_visible_length(std::u16string_view text) {
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (is_visible(scl::impl::scl_utf16_next(text, at))) ++length;
    }
    return length;
}

} // namespace txt
