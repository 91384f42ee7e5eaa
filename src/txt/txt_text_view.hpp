#pragma once

#include "scl/scl_string.hpp"
#include "txt/txt_physical_token.hpp"
#include "txt/txt_text_store.hpp"
#include "txt/txt_text_table.hpp"

#include <cstdint>
#include <memory>
#include <string_view>

namespace txt {

// The tokens of a text in their order. The view destroys them in place; their memory belongs to
// whoever made them and must outlive the view. It keeps their texts: in the table it was given, so
// that views share them, or in itself.
class Txt_text_view {
public:
    // `table` may be null and is not owned.
    Txt_text_view(std::uint32_t type, Txt_text_table* table) : table_(table), type_(type) {}
    Txt_text_view(const Txt_text_view&) = delete;
    Txt_text_view& operator=(const Txt_text_view&) = delete;
    virtual ~Txt_text_view();

    [[nodiscard]] virtual std::uint32_t type() const;

    // Tokens are added, each at the back, between these two; a token added at another time throws
    // std::logic_error.
    virtual void start_content();
    virtual void add_content(Txt_physical_token& token);
    virtual void end_content();

    // The first and the last token; null when there is none.
    [[nodiscard]] virtual const Txt_physical_token* cfront() const;
    [[nodiscard]] virtual Txt_physical_token* cfront();
    [[nodiscard]] virtual const Txt_physical_token* cback() const;
    [[nodiscard]] virtual Txt_physical_token* cback();

    // The kept text equal to `text`, copied if it is new; zero-terminated, as long-lived as the
    // view.
    [[nodiscard]] virtual std::u16string_view insert_text(std::u16string_view text);

    // Where the text of the next token is built.
    [[nodiscard]] Txt_text_store& text_store() { return store_; }
    // As insert_text, but the open text of the store is kept where it stands.
    [[nodiscard]] std::u16string_view keep(std::u16string_view text) {
        if (table_ == nullptr && store_.is_open_text(text)) return store_.keep();
        return text.empty() ? scl::W_EMPTY : insert_text(text);
    }

private:
    [[noreturn]] static void throw_not_started();

    Txt_physical_token* front_ = nullptr;
    Txt_physical_token* back_ = nullptr;
    Txt_text_table* table_;
    std::unique_ptr<Txt_text_table> own_table_; // made when first needed
    std::uint32_t type_;
    bool is_open_ = false;
    Txt_text_store store_;
};

inline void Txt_text_view::start_content() {
    is_open_ = true;
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
