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

// A token that the tokeniser found in a content, and a node of its view's list. The view calls its
// destructor, but does not own its memory.
//
// Tokens are many and short-lived, so a token is little more than two links and two views of texts
// that its view keeps.
class Txt_physical_token : public Txt_token {
public:
    // The view must have kept the text (Txt_text_view::keep).
    Txt_physical_token(std::uint32_t type, std::u16string_view text, Txt_text_view& view)
        : view_(&view), text_(text), trailer_(scl::W_EMPTY), type_(type) {}

    [[nodiscard]] std::uint32_t type() const override;
    [[nodiscard]] Txt_physical_token* previous() const override;
    [[nodiscard]] Txt_physical_token* next() const override;
    // Puts the token back between its former neighbours; false also when these are not next to each
    // other any more. So link tokens in the reverse order of unlinking.
    bool link() override;
    // Drops the token's associations, and the virtual tokens that begin or end with it. The view
    // does not destroy a token that is never linked again.
    bool unlink() override;
    [[nodiscard]] Txt_text_view& view() const override;
    [[nodiscard]] std::size_t position() const override;
    [[nodiscard]] std::uint64_t crc(Txt_text_form form) const override;
    [[nodiscard]] std::u16string_view text_entry() const override;
    [[nodiscard]] std::u16string_view trailer_entry() const override;

    // A token of this class has no content behind it, so all edits return false. Classes that have
    // one override them; make_safe() works through replace_run().
    [[nodiscard]] bool redact(std::size_t skip, std::size_t count) override;
    [[nodiscard]] bool make_safe() override;
    [[nodiscard]] bool replace_text(std::u16string_view text, std::u16string_view before,
                                    std::u16string_view after) override;

    // Both are this token.
    [[nodiscard]] const Txt_physical_token& front() const override;
    [[nodiscard]] const Txt_physical_token& back() const override;

    // Called by the view when it numbers its tokens.
    virtual void position(std::size_t position);

    // Replaces the trailer, which the view then keeps.
    virtual void trailer_text(std::u16string_view trailer);
    using Txt_token::trailer_text;

    // Whether it has text, and an association of this kind.
    [[nodiscard]] virtual bool is_text(const Txt_association_kind& kind) const;
    using Txt_token::is_text;

    // The virtual tokens that contain this one.
    [[nodiscard]] virtual std::vector<Txt_virtual_token*> vtokens() const;

    // An edit like those of Txt_token: removes the text; the trailer stays.
    [[nodiscard]] virtual bool remove();

    // An edit: `text` replaces everything from this token's text to the text of `back`, both
    // included, with the trailers between them. `back` is this token or a later one.
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
    std::uint32_t position_ = 0; // valid once the view has numbered its tokens
};

// Walks over the physical tokens of a view, both ways. Valid until a token is added, linked or
// unlinked: it knows the last token, to walk back from behind the end.
class Txt_token_iterator {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = Txt_physical_token;
    using difference_type = std::ptrdiff_t;
    using pointer = const Txt_physical_token*;
    using reference = const Txt_physical_token&;

    Txt_token_iterator() = default;
    // At `token`; null means behind `last`, the view's last token.
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
