#pragma once

#include "txt/txt_text_form.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace txt {

class Txt_text_view;

// A piece of text in a view. Its texts are kept by the view and live as long as the view does.
class Txt_token {
public:
    Txt_token(const Txt_token&) = delete;
    Txt_token& operator=(const Txt_token&) = delete;
    virtual ~Txt_token() = default;

    // One of the TXT_TOKEN_ types, as the tokeniser gave it.
    [[nodiscard]] virtual std::uint32_t type() const = 0;

    // The neighbours in the view; null at its ends.
    [[nodiscard]] virtual Txt_token* previous() const = 0;
    [[nodiscard]] virtual Txt_token* next() const = 0;

    [[nodiscard]] virtual Txt_text_view& view() const = 0;

    // CRC-64/XZ over the text's 16-bit units, little-endian, without a terminator; 0 for the empty
    // text. In form `whole` this is the token's value in a data set file.
    [[nodiscard]] virtual std::uint64_t crc(Txt_text_form form) const = 0;

    // Zero-terminated. A text may itself hold a zero: text_entry() knows where it really ends.
    [[nodiscard]] virtual const char16_t* text(Txt_text_form form) const = 0;
    [[nodiscard]] virtual std::u16string_view text_entry() const = 0;

    // What stands between this token and the next one: white space.
    [[nodiscard]] virtual const char16_t* trailer_text() const = 0;
    [[nodiscard]] virtual std::u16string_view trailer_entry() const = 0;

    // In what the form counts.
    [[nodiscard]] virtual std::size_t length(Txt_text_form form) const = 0;
    // In 16-bit units.
    [[nodiscard]] virtual std::size_t trailer_length() const = 0;

protected:
    Txt_token() = default;
};

} // namespace txt
