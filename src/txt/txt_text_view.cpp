#include "txt/txt_text_view.hpp"

#include "txt/txt_token_types.hpp"

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace txt {

namespace {

const std::list<Txt_virtual_token> NO_VIRTUAL_TOKENS;

// Moves a token from one list to the back of the other; false when it is not in the first.
bool move_token(const Txt_virtual_token& token, std::list<Txt_virtual_token>& from,
                std::list<Txt_virtual_token>& to) {
    const auto found =
        std::find_if(from.begin(), from.end(), [&](const auto& one) { return &one == &token; });
    if (found == from.end()) return false;
    to.splice(to.end(), from, found);
    return true;
}

} // namespace

Txt_text_view::~Txt_text_view() {
    destroy_tokens();
}

void Txt_text_view::destroy_tokens() {
    for (Txt_physical_token* token = front_; token != nullptr;) {
        Txt_physical_token* const next = token->next_;
        std::destroy_at(token);
        token = next;
    }
}

std::uint32_t Txt_text_view::type() const {
    return type_;
}

void Txt_text_view::throw_not_started() {
    throw std::logic_error("Txt_text_view::add_content() - content not started");
}

void Txt_text_view::check_not_locked() const {
    if (is_locked()) throw std::logic_error("Txt_text_view::start_content() - view is locked");
}

View_extras& Txt_text_view::extras() {
    if (extras_ == nullptr) extras_ = std::make_unique<View_extras>();
    return *extras_;
}

Txt_token_iterator Txt_text_view::cbegin() const {
    return {front_, back_};
}

Txt_token_iterator Txt_text_view::cend() const {
    return {nullptr, back_};
}

bool Txt_text_view::add_association(const Txt_token& token, const Txt_association& association) {
    return extras().associations.add(token, association);
}

bool Txt_text_view::remove_association(const Txt_token& token, const Txt_association_kind& kind) {
    return extras_ != nullptr && extras_->associations.remove(token, kind);
}

std::size_t Txt_text_view::remove_associations(const Txt_token& token) {
    return extras_ != nullptr ? extras_->associations.remove_all(token) : 0;
}

std::vector<Txt_association> Txt_text_view::find_associations(const Txt_token& token) const {
    if (extras_ == nullptr) return {};
    return extras_->associations.find(token);
}

bool Txt_text_view::has_association(const Txt_token& token,
                                    const Txt_association_kind& kind) const {
    return extras_ != nullptr && extras_->associations.has(token, kind);
}

Txt_virtual_token& Txt_text_view::add_virtual_token(std::uint32_t type, Txt_physical_token& front,
                                                    Txt_physical_token& back) {
    if (&front.view() != this || &back.view() != this || !is_linked(front) || !is_linked(back) ||
        back.is_before(front)) {
        throw std::invalid_argument("Txt_text_view::add_virtual_token() - no run of this view");
    }
    return extras().virtual_tokens.emplace_back(type, front, back);
}

Txt_text_view::Const_virtual_iterator Txt_text_view::vbegin() const {
    return extras_ != nullptr ? extras_->virtual_tokens.begin() : NO_VIRTUAL_TOKENS.begin();
}

Txt_text_view::Virtual_iterator Txt_text_view::vbegin() {
    return extras().virtual_tokens.begin();
}

Txt_text_view::Const_virtual_iterator Txt_text_view::vend() const {
    return extras_ != nullptr ? extras_->virtual_tokens.end() : NO_VIRTUAL_TOKENS.end();
}

Txt_text_view::Virtual_iterator Txt_text_view::vend() {
    return extras().virtual_tokens.end();
}

bool Txt_text_view::link_virtual(const Txt_virtual_token& token) {
    return !is_locked() &&
           move_token(token, extras().unlinked_virtual_tokens, extras().virtual_tokens);
}

bool Txt_text_view::unlink_virtual(const Txt_virtual_token& token) {
    return !is_locked() &&
           move_token(token, extras().virtual_tokens, extras().unlinked_virtual_tokens);
}

bool Txt_text_view::is_linked(const Txt_physical_token& token) const {
    return (token.previous_ != nullptr ? token.previous_->next_ : front_) == &token;
}

void Txt_text_view::set_neighbours(Txt_physical_token& token, Txt_physical_token* next_of_previous,
                                   Txt_physical_token* previous_of_next) {
    (token.previous_ != nullptr ? token.previous_->next_ : front_) = next_of_previous;
    (token.next_ != nullptr ? token.next_->previous_ : back_) = previous_of_next;
    is_numbered_ = false;
}

// The neighbours it had must stand side by side; that also says that it is not linked.
bool Txt_text_view::link(Txt_physical_token& token) {
    const bool fits =
        (token.previous_ != nullptr ? token.previous_->next_ : front_) == token.next_ &&
        (token.next_ != nullptr ? token.next_->previous_ : back_) == token.previous_;
    if (is_locked() || is_open_ || !fits) return false;
    set_neighbours(token, &token, &token);
    return true;
}

bool Txt_text_view::unlink(Txt_physical_token& token) {
    if (is_locked() || is_open_ || !is_linked(token)) return false;
    forget(token);
    set_neighbours(token, token.next_, token.previous_);
    return true;
}

void Txt_text_view::forget(const Txt_physical_token& token) {
    if (extras_ == nullptr) return;
    remove_associations(token);
    const auto ends_there = [&](const Txt_virtual_token& run) {
        if (&run.front() != &token && &run.back() != &token) return false;
        remove_associations(run);
        return true;
    };
    extras_->virtual_tokens.remove_if(ends_there);
    extras_->unlinked_virtual_tokens.remove_if(ends_there);
}

void Txt_text_view::number_tokens() {
    if (is_numbered_) return;
    std::size_t position = 0;
    for (Txt_physical_token* token = front_; token != nullptr; token = token->next_) {
        token->position(position++);
    }
    is_numbered_ = !is_open_;
}

bool Txt_text_view::purge() {
    if (is_locked() || is_open_) return false;
    if (extras_ != nullptr) {
        extras_->virtual_tokens.clear();
        extras_->unlinked_virtual_tokens.clear();
        extras_->associations.clear();
    }
    destroy_tokens();
    front_ = nullptr;
    back_ = nullptr;
    return true;
}

char32_t Txt_text_view::get_redaction_character() const {
    const View_extras* const extras = extras_.get();
    return extras ? extras->redaction_character : REDACTION_CHARACTER;
}

void Txt_text_view::set_redaction_character(char32_t character) {
    extras().redaction_character = character;
}

std::size_t Txt_text_view::count(std::uint32_t type) const {
    return static_cast<std::size_t>(std::count_if(
        cbegin(), cend(), [&](const Txt_physical_token& token) { return token.type() == type; }));
}

std::size_t Txt_text_view::word_token_count() const {
    return count(TXT_TOKEN_WORD);
}

std::size_t Txt_text_view::number_token_count() const {
    return count(TXT_TOKEN_NUMBER);
}

std::size_t Txt_text_view::punctuation_token_count() const {
    return count(TXT_TOKEN_PUNCTUATION);
}

std::size_t Txt_text_view::symbol_token_count() const {
    return count(TXT_TOKEN_SYMBOL);
}

std::u16string_view Txt_text_view::insert_text(std::u16string_view text) {
    return (table_ != nullptr ? *table_ : extras().table).insert(text);
}

std::u16string_view Txt_text_view::insert_whitespace(std::u16string_view text) {
    return insert_text(text);
}

const char16_t* Txt_text_view::empty_text() const {
    return u"";
}

std::u16string_view Txt_text_view::lookup_text(std::u16string_view text) const {
    if (table_ != nullptr) return table_->lookup(text);
    return extras_ != nullptr ? extras_->table.lookup(text) : std::u16string_view();
}

std::u16string_view Txt_text_view::lookup_text(const char16_t* data, std::size_t length) const {
    return lookup_text({data, length});
}

std::u16string Txt_text_view::create_string() const {
    std::u16string text;
    for (const Txt_physical_token* token = front_; token != nullptr; token = token->next_) {
        text += token->text_entry();
        text += token->trailer_entry();
    }
    return text;
}

void Txt_text_view::lock() {
    if (is_open_) throw std::logic_error("Txt_text_view::lock() - content not ended");
    ++extras().locks;
}

void Txt_text_view::unlock() {
    if (!is_locked()) throw std::logic_error("Txt_text_view::unlock() - view is not locked");
    --extras().locks;
}

} // namespace txt
