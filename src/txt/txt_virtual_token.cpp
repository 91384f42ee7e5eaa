#include "txt/txt_virtual_token.hpp"

#include "txt/txt_text_view.hpp"

#include <algorithm>

namespace txt {

bool Txt_virtual_token::link() {
    return view().link_virtual(*this);
}

bool Txt_virtual_token::unlink() {
    return view().unlink_virtual(*this);
}

// Joined anew each time, since tokens of the run may be unlinked and linked. The view keeps equal
// texts once.
std::u16string_view Txt_virtual_token::text_entry() const {
    std::u16string text(front_->text_entry());
    for (const Txt_physical_token* token = front_; token != back_;) {
        text += token->trailer_entry();
        token = token->next();
        text += token->text_entry();
    }
    return view().insert_text(text);
}

std::u16string_view Txt_virtual_token::trailer_entry() const {
    return back_->trailer_entry();
}

// A physical token takes a count of 0 for all of it, so a token of which nothing is to be redacted
// is left out.
bool Txt_virtual_token::redact(std::size_t skip, std::size_t count) {
    std::size_t left = count != 0 ? count : scl::SCL_NPOS; // more than any run has
    for (Txt_physical_token* token = front_; left != 0; token = token->next()) {
        const std::size_t visible = token->length(Txt_text_form::visible);
        const std::size_t taken = std::min(left, visible - std::min(skip, visible));
        if (taken != 0 && !token->redact(skip, taken)) return false;
        skip -= std::min(skip, visible);
        left -= taken;
        if (token == back_) break;
    }
    return true;
}

// One edit over the whole run. With one for each token, the trailers between them would show how
// many words there were and how long.
bool Txt_virtual_token::make_safe() {
    return front_->replace_run(*back_, safe_text());
}

// The first token gets the new text, the others are removed; the trailers between them stay.
// `after` goes behind the last token.
bool Txt_virtual_token::replace_text(std::u16string_view text, std::u16string_view before,
                                     std::u16string_view after) {
    const bool is_first_concerned = !text.empty() || !before.empty();
    if (!is_first_concerned && after.empty()) return false;
    if (is_first_concerned && !front_->replace_text(text, before, {})) return false;
    if (!text.empty() && !remove_all_but_first()) return false;
    return after.empty() || back_->replace_text({}, {}, after);
}

bool Txt_virtual_token::remove_all_but_first() {
    for (Txt_physical_token* token = front_; token != back_;) {
        token = token->next();
        if (!token->remove()) return false;
    }
    return true;
}

} // namespace txt
