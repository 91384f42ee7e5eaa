#include "txt/txt_token.hpp"

#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"
#include "txt/txt_text_view.hpp"
#include "txt/txt_token_types.hpp"

#include <algorithm>
#include <string>

namespace txt {

namespace {

// White space counts as visible, too; only a virtual token's text holds any.
bool is_visible(char32_t code_point) {
    return scl::scl_code_point_type(code_point) != scl::Scl_unicode_code_point_type::attached;
}

// The text without the characters that attach to others and are not visible by themselves (class
// `attached`: marks and format characters).
std::u16string visible_text(std::u16string_view text) {
    std::u16string visible;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t from = at;
        if (is_visible(scl::scl_utf16_next(text, at))) {
            visible.append(text.substr(from, at - from));
        }
    }
    return visible;
}

// How many characters (code points) of a text `counts` is true of.
template <class Predicate>
std::size_t count_characters(std::u16string_view text, const Predicate& counts) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (counts(scl::scl_utf16_next(text, at))) ++count;
    }
    return count;
}

} // namespace

// By position(), so that virtual and physical tokens compare alike.
bool Txt_token::is_before(const Txt_token& other) const {
    return &view() == &other.view() && back().position() < other.position();
}

bool Txt_token::is_after(const Txt_token& other) const {
    return other.is_before(*this);
}

bool Txt_token::contains(const Txt_token& other) const {
    return &view() == &other.view() && position() <= other.position() &&
           other.back().position() <= back().position();
}

bool Txt_token::overlaps(const Txt_token& other) const {
    return &view() == &other.view() && !is_before(other) && !is_after(other);
}

std::uint64_t Txt_token::crc(Txt_text_form form) const {
    const std::u16string_view whole = text_entry();
    return txt_token_value(form == Txt_text_form::whole ? whole : visible_text(whole));
}

// Texts that the view keeps end in a zero. A text made here has none until the view's table keeps
// it.
const char16_t* Txt_token::text(Txt_text_form form) const {
    const std::u16string_view whole = text_entry();
    if (whole.empty()) return view().empty_text();
    if (form == Txt_text_form::whole) return whole.data();
    return view().insert_text(visible_text(whole)).data();
}

const char16_t* Txt_token::trailer_text() const {
    const std::u16string_view trailer = trailer_entry();
    return trailer.empty() ? view().empty_text() : trailer.data();
}

// Counts without a copy of the text: redaction asks every token of a run.
std::size_t Txt_token::length(Txt_text_form form) const {
    const std::u16string_view whole = text_entry();
    return form == Txt_text_form::whole ? whole.size() : count_characters(whole, is_visible);
}

std::size_t Txt_token::trailer_length() const {
    return trailer_entry().size();
}

bool Txt_token::is_text() const {
    return !text_entry().empty();
}

bool Txt_token::is_trailer() const {
    return !is_text() && !trailer_entry().empty();
}

// Kept in the view's table, since callers get a pointer that lives as long as the view.
const char16_t* Txt_token::formatted_text() const {
    std::u16string formatted(text_entry());
    formatted += trailer_entry();
    return view().insert_text(formatted).data();
}

std::size_t Txt_token::formatted_text_length() const {
    return length(Txt_text_form::whole) + trailer_length();
}

// A lone surrogate is removed: a redaction character in its place would show that there was one. A
// text without any visible character becomes one redaction character, so that it still shows.
std::u16string Txt_token::safe_text() const {
    const std::u16string_view whole = text_entry();
    if (whole.empty()) return {};
    const std::size_t count = count_characters(
        whole, [](char32_t c) { return is_visible(c) && !scl::scl_is_surrogate(c); });
    return view().redaction(std::max<std::size_t>(count, 1));
}

} // namespace txt
