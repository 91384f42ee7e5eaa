#pragma once

#include "scl/text/scl_string.hpp"
#include "txt/txt_associations.hpp"
#include "txt/txt_token.hpp"

#include <cstddef>
#include <iterator>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace txt {

class Txt_virtual_token;

// A token that the tokeniser found in a content, with its place in its view's list. The view
// destroys it, but does not own its memory.
//
// Tokens are many and short-lived, so a token is little more than its links and two views of text
// that its view keeps.
class Txt_physical_token : public Txt_token {
public:
    // The view must have kept the text (Txt_text_view::keep).
    Txt_physical_token(std::uint32_t type, std::u16string_view text, Txt_text_view& view)
        : view_(&view), text_(text), trailer_(scl::W_EMPTY), type_(type) {}

    [[nodiscard]] std::uint32_t type() const override;
    [[nodiscard]] Txt_physical_token* previous() const override;
    [[nodiscard]] Txt_physical_token* next() const override;
    // Back to where it was; false too when its former neighbours are no neighbours any more. So
    // tokens are linked in the reverse order of unlinking.
    bool link() override;
    // Its associations go, and the virtual tokens that begin or end with it. A token that is never
    // linked again is not destroyed by the view.
    bool unlink() override;
    [[nodiscard]] Txt_text_view& view() const override;
    [[nodiscard]] std::size_t position() const override;
    [[nodiscard]] std::uint64_t crc(Txt_text_form form) const override;
    [[nodiscard]] std::u16string_view text_entry() const override;
    [[nodiscard]] std::u16string_view trailer_entry() const override;

    // A token of this class knows of no content, and so cannot edit any: all edits are false here.
    // Those that know one override them, make_safe() through replace_run().
    [[nodiscard]] bool redact(std::size_t skip, std::size_t count) override;
    [[nodiscard]] bool make_safe() override;
    [[nodiscard]] bool replace_text(std::u16string_view text, std::u16string_view before,
                                    std::u16string_view after) override;

    // Itself.
    [[nodiscard]] const Txt_physical_token& front() const override;
    [[nodiscard]] const Txt_physical_token& back() const override;

    // For the view, which numbers its tokens.
    virtual void position(std::size_t position);

    // Replaces the trailer, which the view then keeps.
    virtual void trailer_text(std::u16string_view trailer);
    using Txt_token::trailer_text;

    // Whether it is text that a caller attached an association of this kind to.
    [[nodiscard]] virtual bool is_text(const Txt_association_kind& kind) const;
    using Txt_token::is_text;

    // The virtual tokens whose run this one is in.
    [[nodiscard]] virtual std::vector<Txt_virtual_token*> vtokens() const;

    // An edit as those of Txt_token: the text goes, the trailer stays.
    [[nodiscard]] virtual bool remove();

    // An edit as well: `text` takes the place of everything from this token's text to that of
    // `back`, both included, and so of the trailers between. `back` is this token or one after it.
    [[nodiscard]] virtual bool replace_run(const Txt_physical_token& back,
                                           std::u16string_view text);

private:
    friend class Txt_text_view; // which links the list

    Txt_text_view* view_;
    Txt_physical_token* previous_ = nullptr;
    Txt_physical_token* next_ = nullptr;
    std::u16string_view text_;
    std::u16string_view trailer_;
    std::uint32_t type_;
    std::uint32_t position_ = 0; // when the view has numbered its tokens
};

// Walks the physical tokens of a view, both ways. Valid while the view's tokens stay as they are:
// it holds the last token, from which it walks back when it is past the end.
class Txt_token_iterator {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = Txt_physical_token;
    using difference_type = std::ptrdiff_t;
    using pointer = const Txt_physical_token*;
    using reference = const Txt_physical_token&;

    Txt_token_iterator() = default;
    // At `token`, or, null, past `last`, the view's last one.
    Txt_token_iterator(pointer token, pointer last) : token_(token), last_(last) {}

    reference operator*() const { return *token_; }
    pointer operator->() const { return token_; }

    Txt_token_iterator& operator++() {
        token_ = token_->next();
        return *this;
    }
    Txt_token_iterator operator++(int) {
        const Txt_token_iterator before = *this;
        ++*this;
        return before;
    }
    Txt_token_iterator& operator--() {
        token_ = token_ != nullptr ? token_->previous() : last_;
        return *this;
    }
    Txt_token_iterator operator--(int) {
        const Txt_token_iterator before = *this;
        --*this;
        return before;
    }

    bool operator==(const Txt_token_iterator&) const = default;

private:
    pointer token_ = nullptr;
    pointer last_ = nullptr;
};

} // namespace txt

#pragma GCC visibility pop
