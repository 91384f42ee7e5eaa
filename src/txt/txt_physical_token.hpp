#pragma once

#include "scl/scl_string.hpp"
#include "txt/txt_token.hpp"

namespace txt {

// A token that stands for itself in the content, one after the other in its view's list. The view
// destroys it, but does not own its memory.
class Txt_physical_token : public Txt_token {
public:
    // The view must have kept the text (Txt_text_view::keep).
    Txt_physical_token(std::uint32_t type, std::u16string_view text, Txt_text_view& view)
        : view_(&view), text_(text), trailer_(scl::W_EMPTY), type_(type) {}

    [[nodiscard]] std::uint32_t type() const override;
    [[nodiscard]] Txt_physical_token* previous() const override;
    [[nodiscard]] Txt_physical_token* next() const override;
    [[nodiscard]] Txt_text_view& view() const override;
    [[nodiscard]] std::uint64_t crc(Txt_text_form form) const override;
    [[nodiscard]] const char16_t* text(Txt_text_form form) const override;
    [[nodiscard]] std::u16string_view text_entry() const override;
    [[nodiscard]] const char16_t* trailer_text() const override;
    [[nodiscard]] std::u16string_view trailer_entry() const override;
    [[nodiscard]] std::size_t length(Txt_text_form form) const override;
    [[nodiscard]] std::size_t trailer_length() const override;

    // Replaces the trailer, which the view then keeps.
    virtual void trailer_text(std::u16string_view trailer);

private:
    friend class Txt_text_view; // which links the list

    Txt_text_view* view_;
    Txt_physical_token* previous_ = nullptr;
    Txt_physical_token* next_ = nullptr;
    std::u16string_view text_;
    std::u16string_view trailer_;
    std::uint32_t type_;
};

} // namespace txt
