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

// A piece of text in a view: a physical token is one the tokeniser found, a virtual token a run of
// those. Its texts are kept by the view and live as long as the view does.
//
// Tokens compare by their places in the view: that of a token is the positions from its front to
// its back. Tokens of different views compare as false in every respect.
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

    // Of its front, counted from 0.
    [[nodiscard]] virtual std::size_t position() const = 0;
    // Wholly before, or after, the other one.
    [[nodiscard]] virtual bool is_before(const Txt_token& other) const;
    [[nodiscard]] virtual bool is_after(const Txt_token& other) const;
    // Whether all of the other one's place, or some of it, is this one's too.
    [[nodiscard]] virtual bool contains(const Txt_token& other) const;
    [[nodiscard]] virtual bool overlaps(const Txt_token& other) const;

    // The value of the text in that form (txt_token_value); in form `whole` it is what a data set
    // file holds of the token.
    [[nodiscard]] virtual std::uint64_t crc(Txt_text_form form) const;

    // Zero-terminated. A text may itself hold a zero: text_entry() knows where it really ends.
    [[nodiscard]] virtual const char16_t* text(Txt_text_form form) const;
    [[nodiscard]] virtual std::u16string_view text_entry() const = 0;

    // What is between this token and the next one: white space.
    [[nodiscard]] virtual const char16_t* trailer_text() const;
    [[nodiscard]] virtual std::u16string_view trailer_entry() const = 0;

    // In what the form counts: 16-bit units, or visible characters.
    [[nodiscard]] virtual std::size_t length(Txt_text_form form) const;
    // In 16-bit units.
    [[nodiscard]] virtual std::size_t trailer_length() const;

    // Whether there is text in it, or nothing but a trailer.
    [[nodiscard]] virtual bool is_text() const;
    [[nodiscard]] virtual bool is_trailer() const;

    // Edits of the content that the token is from, which show when that is composed. False when
    // nothing, or not all, could be queued: the content may not be edited, or other edits are in
    // the way. The token itself does not change.
    //
    // Overwrites `count` visible characters after the first `skip` with one redaction character of
    // the view each; a count of 0 is as many as the token has. A character that attaches to the
    // last one overwritten goes too. But only one does: where several attach, the others can still
    // be read, and so can what attaches to the last one skipped. To hide a whole token use
    // make_safe().
    [[nodiscard]] virtual bool redact(std::size_t skip, std::size_t count) = 0;

    // The text with its trailer, zero-terminated, and its length in 16-bit units.
    [[nodiscard]] virtual const char16_t* formatted_text() const;
    [[nodiscard]] virtual std::size_t formatted_text_length() const;

    // An edit that leaves nothing of the text to be read. Every character of it that is visible by
    // itself becomes a redaction character of the view; every other one, which are those that
    // attach and lone surrogates, is taken out wherever it is. Of a text in which nothing is
    // visible one redaction character remains. A token without text stays as it is.
    [[nodiscard]] virtual bool make_safe() = 0;

    // An edit: another text, and texts just before and after it; an empty one changes nothing.
    // False when all three are empty.
    [[nodiscard]] virtual bool replace_text(std::u16string_view text, std::u16string_view before,
                                            std::u16string_view after) = 0;

    // The ends of the run of physical tokens that this one stands for.
    [[nodiscard]] virtual const Txt_physical_token& front() const = 0;
    [[nodiscard]] virtual const Txt_physical_token& back() const = 0;

protected:
    Txt_token() = default;

    // What make_safe() puts in the text's place.
    [[nodiscard]] std::u16string safe_text() const;
};

} // namespace txt

#pragma GCC visibility pop
