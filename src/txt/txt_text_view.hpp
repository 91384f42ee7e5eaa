#pragma once

#include "scl/text/scl_string.hpp"
#include "txt/txt_associations.hpp"
#include "txt/txt_physical_token.hpp"
#include "txt/txt_text_store.hpp"
#include "txt/txt_virtual_token.hpp"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace txt {

// The tokens of a text, as a linked list. The view calls their destructors; their memory belongs to
// whoever made them and must outlive the view. The view keeps their texts, in the table that it was
// given (several views can share one) or in memory of its own.
//
// Most views are made for one value, walked once and dropped. So a view allocates nothing for its
// tokens, and makes what few callers need (virtual tokens, associations, locks) on first use.
class Txt_text_view {
public:
    using Virtual_iterator = std::list<Txt_virtual_token>::iterator;
    using Const_virtual_iterator = std::list<Txt_virtual_token>::const_iterator;

    // `table` may be null and is not owned.
    Txt_text_view(std::uint32_t type, Txt_text_table* table);
    Txt_text_view(const Txt_text_view&) = delete;
    Txt_text_view& operator=(const Txt_text_view&) = delete;
    virtual ~Txt_text_view();

    [[nodiscard]] virtual std::uint32_t type() const;

    // add_content() appends a token, between start_content() and end_content(). Throws
    // std::logic_error for a token added at another time, and for starting in a locked view.
    virtual void start_content();
    virtual void add_content(Txt_physical_token& token);
    virtual void end_content();

    // The first and the last token; null when there is none.
    [[nodiscard]] virtual const Txt_physical_token* cfront() const;
    [[nodiscard]] virtual Txt_physical_token* cfront();
    [[nodiscard]] virtual const Txt_physical_token* cback() const;
    [[nodiscard]] virtual Txt_physical_token* cback();

    // From the first token to past the last one.
    [[nodiscard]] virtual Txt_token_iterator cbegin() const;
    [[nodiscard]] virtual Txt_token_iterator cend() const;

    // Callers may attach associations to the view's tokens, one of each kind to a token. Adding
    // returns false when the token has one of that kind already, removing when it has none.
    // find_associations() returns them in the order of their kinds.
    virtual bool add_association(const Txt_token& token, const Txt_association& association);
    virtual bool remove_association(const Txt_token& token, const Txt_association_kind& kind);
    virtual std::size_t remove_associations(const Txt_token& token);
    [[nodiscard]] virtual std::vector<Txt_association>
    find_associations(const Txt_token& token) const;

    // Adds a token over the run from `front` to `back`, behind the virtual tokens that there are.
    // The caller chooses its type. Throws std::invalid_argument when that is no run of this view.
    virtual Txt_virtual_token& add_virtual_token(std::uint32_t type, Txt_physical_token& front,
                                                 Txt_physical_token& back);

    // The virtual tokens, in the order in which they were added or linked again.
    [[nodiscard]] virtual Const_virtual_iterator vbegin() const;
    [[nodiscard]] virtual Virtual_iterator vbegin();
    [[nodiscard]] virtual Const_virtual_iterator vend() const;
    [[nodiscard]] virtual Virtual_iterator vend();

    // Drops all tokens, virtual tokens and associations, as the destructor does; texts stay. False,
    // with nothing done, when the view is locked or end_content() was not called.
    virtual bool purge();

    // The character that replaces redacted ones: '*' unless set.
    [[nodiscard]] virtual char32_t get_redaction_character() const;
    virtual void set_redaction_character(char32_t character);
    // The text that replaces `count` characters, one 16-bit unit each: of a redaction character
    // beyond U+FFFF only the low 16 bits are used.
    [[nodiscard]] std::u16string redaction(std::size_t count) const;

    // How many physical tokens of a type there are. Each call walks over all tokens.
    [[nodiscard]] virtual std::size_t word_token_count() const;
    [[nodiscard]] virtual std::size_t number_token_count() const;
    [[nodiscard]] virtual std::size_t punctuation_token_count() const;
    [[nodiscard]] virtual std::size_t symbol_token_count() const;

    // The view's own copy of the text, made if there is none yet; zero-terminated. It lives as long
    // as the view, or as the table that the view was given.
    [[nodiscard]] virtual std::u16string_view insert_text(std::u16string_view text);
    // The same for trailers.
    [[nodiscard]] virtual std::u16string_view insert_whitespace(std::u16string_view text);
    // Zero-terminated too.
    [[nodiscard]] virtual const char16_t* empty_text() const;
    // The copy that the view's table has of this text; its data is null when there is none. Texts
    // that keep() left in the store are in no table, and are not found.
    [[nodiscard]] virtual std::u16string_view lookup_text(std::u16string_view text) const;
    // The same; the length is in 16-bit units.
    [[nodiscard]] virtual std::u16string_view lookup_text(const char16_t* data,
                                                          std::size_t length) const;
    // All tokens' texts and trailers in one.
    [[nodiscard]] virtual std::u16string create_string() const;

    // A locked view keeps its order of tokens: purge, link and unlink return false, and
    // start_content() throws. Each lock() needs its own unlock(). Throws std::logic_error between
    // start_content() and end_content(), and for an unlock() without a lock().
    virtual void lock();
    virtual void unlock();

    // Where the text of the next token is built.
    [[nodiscard]] Txt_text_store& text_store() { return store_; }
    // As insert_text, but the open text of the store stays where it is: neither copied nor hashed,
    // which for most tokens would be the larger part of making them.
    [[nodiscard]] std::u16string_view keep(std::u16string_view text) {
        if (table_ == nullptr && store_.is_open_text(text)) return store_.keep();
        return text.empty() ? scl::W_EMPTY : insert_text(text);
    }

private:
    friend class Txt_physical_token; // both kinds of token are linked through their view
    friend class Txt_virtual_token;

    struct Extras; // what most views never need

    [[nodiscard]] bool link(Txt_physical_token& token);
    [[nodiscard]] bool unlink(Txt_physical_token& token);
    [[nodiscard]] bool link_virtual(const Txt_virtual_token& token);
    [[nodiscard]] bool unlink_virtual(const Txt_virtual_token& token);
    void number_tokens();
    [[nodiscard]] bool has_association(const Txt_token& token,
                                       const Txt_association_kind& kind) const;

    [[noreturn]] static void throw_not_started();
    void check_not_locked() const;
    [[nodiscard]] bool is_locked() const;
    [[nodiscard]] Extras& extras();
    [[nodiscard]] bool is_linked(const Txt_physical_token& token) const;
    void set_neighbours(Txt_physical_token& token, Txt_physical_token* next_of_previous,
                        Txt_physical_token* previous_of_next);
    void forget(const Txt_physical_token& token);
    void destroy_tokens();
    [[nodiscard]] std::size_t count(std::uint32_t type) const;

    Txt_physical_token* front_ = nullptr;
    Txt_physical_token* back_ = nullptr;
    Txt_text_table* table_;
    std::unique_ptr<Extras> extras_; // made when first needed
    std::uint32_t type_;
    bool is_open_ = false;
    bool is_numbered_ = false; // whether the tokens know their positions
    Txt_text_store store_;
};

// Inline, so that making and walking a view of a final class, as the codec has, costs no calls.

inline void Txt_text_view::start_content() {
    if (extras_ != nullptr) check_not_locked();
    is_open_ = true;
    is_numbered_ = false;
}

inline void Txt_text_view::add_content(Txt_physical_token& token) {
    if (!is_open_) throw_not_started();
    token.previous_ = back_;
    (back_ != nullptr ? back_->next_ : front_) = &token;
    back_ = &token;
}

inline void Txt_text_view::end_content() {
    is_open_ = false;
}

inline const Txt_physical_token* Txt_text_view::cfront() const {
    return front_;
}

inline Txt_physical_token* Txt_text_view::cfront() {
    return front_;
}

inline const Txt_physical_token* Txt_text_view::cback() const {
    return back_;
}

inline Txt_physical_token* Txt_text_view::cback() {
    return back_;
}

} // namespace txt

#pragma GCC visibility pop
