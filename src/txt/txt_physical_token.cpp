#include "txt/txt_physical_token.hpp"

#include "scl/scl_crc64.hpp"
#include "txt/txt_text_view.hpp"
#include "txt/txt_visible_text.hpp"

#include <string>

namespace txt {

namespace {

std::uint64_t crc_of(std::u16string_view text) {
    if (text.empty()) return 0;
    return scl::Scl_crc64::calculate(text.data(), text.size() * sizeof(char16_t),
                                     scl::Scl_crc64::INITIAL);
}

} // namespace

std::uint32_t Txt_physical_token::type() const {
    return type_;
}

Txt_physical_token* Txt_physical_token::previous() const {
    return previous_;
}

Txt_physical_token* Txt_physical_token::next() const {
    return next_;
}

Txt_text_view& Txt_physical_token::view() const {
    return *view_;
}

std::uint64_t Txt_physical_token::crc(Txt_text_form form) const {
    if (form == Txt_text_form::whole) return crc_of(text_);
    return crc_of(txt_visible_text(text_));
}

const char16_t* Txt_physical_token::text(Txt_text_form form) const {
    if (form == Txt_text_form::whole) return text_.data();
    return view_->insert_text(txt_visible_text(text_)).data();
}

std::u16string_view Txt_physical_token::text_entry() const {
    return text_;
}

const char16_t* Txt_physical_token::trailer_text() const {
    return trailer_entry().data();
}

std::u16string_view Txt_physical_token::trailer_entry() const {
    return trailer_;
}

std::size_t Txt_physical_token::length(Txt_text_form form) const {
    return form == Txt_text_form::whole ? text_.size() : txt_visible_length(text_);
}

std::size_t Txt_physical_token::trailer_length() const {
    return trailer_entry().size();
}

void Txt_physical_token::trailer_text(std::u16string_view trailer) {
    trailer_ = view_->keep(trailer);
}

} // namespace txt
