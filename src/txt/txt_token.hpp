#pragma once

#include "txt/txt_token_types.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace txt {

class Txt_physical_token;
class Txt_text_view;

// A piece of text in a view. A physical token is one that the tokeniser found; a virtual token is a
// run of physical ones. The view keeps a token's texts, and they live as long as the view.
//
// Tokens are compared by the positions that they cover in the view, from front to back. For tokens
// of different views every comparison is false.
class Txt_token {
public:
    Txt_token(const Txt_token&) = delete;
    Txt_token& operator=(const Txt_token&) = delete;
    virtual ~Txt_token() = default;

    // One of the TXT_TOKEN_ types, as the tokeniser gave it.
    [[nodiscard]] virtual std::uint32_t type() const = 0;

    // The physical tokens before and after this one; null at the ends of the view.
    [[nodiscard]] virtual Txt_physical_token* previous() const = 0;
    [[nodiscard]] virtual Txt_physical_token* next() const = 0;

    // unlink() takes the token out of its view's order, link() puts it back. False when it is there
    // already, or the view is locked.
    virtual bool link() = 0;
    virtual bool unlink() = 0;

    [[nodiscard]] virtual Txt_text_view& view() const = 0;

    // The position of its front in the view, counted from 0.
    [[nodiscard]] virtual std::size_t position() const = 0;
    // Wholly before, or after, the other one.
    [[nodiscard]] virtual bool is_before(const Txt_token& other) const;
    [[nodiscard]] virtual bool is_after(const Txt_token& other) const;
    // Whether this token covers all of the other one's positions, or some of them.
    [[nodiscard]] virtual bool contains(const Txt_token& other) const;
    [[nodiscard]] virtual bool overlaps(const Txt_token& other) const;

    // The CRC-64 of the text in that form (txt_token_value). Data set files hold that of form
    // `whole`.
    [[nodiscard]] virtual std::uint64_t crc(Txt_text_form form) const;

    // Zero-terminated. A text may itself hold a zero: text_entry() knows where it really ends.
    [[nodiscard]] virtual const char16_t* text(Txt_text_form form) const;
    [[nodiscard]] virtual std::u16string_view text_entry() const = 0;

    // What is between this token and the next one: white space.
    [[nodiscard]] virtual const char16_t* trailer_text() const;
    [[nodiscard]] virtual std::u16string_view trailer_entry() const = 0;

    // In 16-bit units for form `whole`, in visible characters for form `visible`.
    [[nodiscard]] virtual std::size_t length(Txt_text_form form) const;
    // In 16-bit units.
    [[nodiscard]] virtual std::size_t trailer_length() const;

    // Whether there is text in it, or nothing but a trailer.
    [[nodiscard]] virtual bool is_text() const;
    [[nodiscard]] virtual bool is_trailer() const;

    // redact(), make_safe() and replace_text() queue edits of the content that the token comes
    // from; the codec's compose() carries them out. The token itself does not change. False when
    // the edit could not be queued as a whole: the content may not be edited, or it overlaps an
    // earlier edit.
    //
    // redact() skips the first `skip` visible characters and overwrites the next `count` with the
    // view's redaction character, one for one; a count of 0 means all. A mark that attaches to the
    // last overwritten character goes too, but only one: further marks can still be read, and so
    // can a mark on the last skipped character. To hide a whole token, use make_safe().
    [[nodiscard]] virtual bool redact(std::size_t skip, std::size_t count) = 0;

    // The text with its trailer, zero-terminated, and its length in 16-bit units.
    [[nodiscard]] virtual const char16_t* formatted_text() const;
    [[nodiscard]] virtual std::size_t formatted_text_length() const;

    // Hides the whole text: each visible character becomes a redaction character, and marks and
    // lone surrogates are removed. A text without visible characters becomes one redaction
    // character. A token without text stays as it is.
    [[nodiscard]] virtual bool make_safe() = 0;

    // Replaces the text, and inserts `before` and `after` around it. An empty argument leaves that
    // part as it is. False when all three are empty.
    [[nodiscard]] virtual bool replace_text(std::u16string_view text, std::u16string_view before,
                                            std::u16string_view after) = 0;

    // The ends of the run of physical tokens that this one stands for.
    [[nodiscard]] virtual const Txt_physical_token& front() const = 0;
    [[nodiscard]] virtual const Txt_physical_token& back() const = 0;

protected:
    Txt_token() = default;

    // The text that make_safe() writes.
    [[nodiscard]] std::u16string safe_text() const;
};

} // namespace txt

#pragma GCC visibility pop
