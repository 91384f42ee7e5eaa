#include "txt/txt_physical_token.hpp"

#include "txt/txt_text_view.hpp"
#include "txt/txt_token_types.hpp"

namespace txt {

std::uint32_t Txt_physical_token::type() const {
    return type_;
}

Txt_physical_token* Txt_physical_token::previous() const {
    return previous_;
}

Txt_physical_token* Txt_physical_token::next() const {
    return next_;
}

// The view owns the list, and knows whether it may be changed.
bool Txt_physical_token::link() {
    return view_->link(*this);
}

bool Txt_physical_token::unlink() {
    return view_->unlink(*this);
}

Txt_text_view& Txt_physical_token::view() const {
    return *view_;
}

// Positions change with every link and unlink, so the view numbers its tokens only when asked.
std::size_t Txt_physical_token::position() const {
    view_->number_tokens();
    return position_;
}

// Stored in 32 bits, which keeps tokens small; no pool holds so many tokens.
void Txt_physical_token::position(std::size_t position) {
    position_ = static_cast<std::uint32_t>(position);
}

// Form `whole` is the one that data set files hold and the common one; it needs no copy of the
// text.
std::uint64_t Txt_physical_token::crc(Txt_text_form form) const {
    return form == Txt_text_form::whole ? txt_token_value(text_) : Txt_token::crc(form);
}

std::u16string_view Txt_physical_token::text_entry() const {
    return text_;
}

std::u16string_view Txt_physical_token::trailer_entry() const {
    return trailer_;
}

// Keeps a copy: the caller's text may not live as long.
void Txt_physical_token::trailer_text(std::u16string_view trailer) {
    trailer_ = view_->keep(trailer);
}

// A plain token has no content behind it that could be edited. Classes whose tokens do override
// these.
bool Txt_physical_token::redact(std::size_t /*skip*/, std::size_t /*count*/) {
    return false;
}

bool Txt_physical_token::replace_text(std::u16string_view /*text*/, std::u16string_view /*before*/,
                                      std::u16string_view /*after*/) {
    return false;
}

bool Txt_physical_token::replace_run(const Txt_physical_token& /*back*/,
                                     std::u16string_view /*text*/) {
    return false;
}

// Through replace_run(), so that a class that overrides that one need not override this.
bool Txt_physical_token::make_safe() {
    return replace_run(*this, safe_text());
}

bool Txt_physical_token::remove() {
    return false;
}

// A token is a run of one.
const Txt_physical_token& Txt_physical_token::front() const {
    return *this;
}

const Txt_physical_token& Txt_physical_token::back() const {
    return *this;
}

// The cheap test first: a trailer without text needs no search.
bool Txt_physical_token::is_text(const Txt_association_kind& kind) const {
    return is_text() && view_->has_association(*this, kind);
}

// A linear search: views have few virtual tokens, most have none.
std::vector<Txt_virtual_token*> Txt_physical_token::vtokens() const {
    std::vector<Txt_virtual_token*> tokens;
    for (auto token = view_->vbegin(); token != view_->vend(); ++token) {
        if (token->contains(*this)) tokens.push_back(&*token);
    }
    return tokens;
}

} // namespace txt
