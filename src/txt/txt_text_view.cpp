#include "txt/txt_text_view.hpp"

#include "txt/txt_token_types.hpp"

#include <algorithm>
#include <stdexcept>

namespace txt {

namespace {

constexpr char32_t REDACTION_CHARACTER = U'*'; // unless told otherwise

// Moves a token from one list to the back of the other; false when it is not in the first. It is
// the list's node that moves: the token keeps its address.
bool move_token(const Txt_virtual_token& token, std::list<Txt_virtual_token>& from,
                std::list<Txt_virtual_token>& to) {
    const auto found =
        std::find_if(from.begin(), from.end(), [&](const auto& one) { return &one == &token; });
    if (found == from.end()) return false;
    to.splice(to.end(), from, found);
    return true;
}

} // namespace

// Lists, so that a virtual token stays where it is when it or another one is unlinked: callers hold
// on to them.
struct Txt_text_view::Extras {
    Txt_text_table table; // of a view that was given none
    Associations associations;
    std::list<Txt_virtual_token> virtual_tokens;
    std::list<Txt_virtual_token> unlinked_virtual_tokens;
    char32_t redaction_character = REDACTION_CHARACTER;
    std::size_t locks = 0;
};

Txt_text_view::Txt_text_view(std::uint32_t type, Txt_text_table* table)
    : table_(table), type_(type) {}

Txt_text_view::~Txt_text_view() {
    destroy_tokens();
}

// The next one is read first: a token is gone once destroyed.
void Txt_text_view::destroy_tokens() {
    for (Txt_physical_token* token = front_; token != nullptr;) {
        Txt_physical_token* const next = token->next_;
        std::destroy_at(token);
        token = next;
    }
}

// Not in the header's inline code: a throw there would be part of the loop that adds tokens.
void Txt_text_view::throw_not_started() {
    throw std::logic_error("Txt_text_view::add_content() - content not started");
}

std::uint32_t Txt_text_view::type() const {
    return type_;
}

// A caller that locks a view relies on its tokens: they may not be made anew under it.
void Txt_text_view::check_not_locked() const {
    if (is_locked()) throw std::logic_error("Txt_text_view::start_content() - view is locked");
}

bool Txt_text_view::is_locked() const {
    return extras_ != nullptr && extras_->locks != 0;
}

// Made when first needed. Most views only hold tokens, and making a view is part of every value.
Txt_text_view::Extras& Txt_text_view::extras() {
    if (extras_ == nullptr) extras_ = std::make_unique<Extras>();
    return *extras_;
}

// With the last token, so that an iterator past the end can walk back.
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

// Checked here, as a run of another view's tokens, or one that ends before it begins, would be
// walked past the end of the list later.
Txt_virtual_token& Txt_text_view::add_virtual_token(std::uint32_t type, Txt_physical_token& front,
                                                    Txt_physical_token& back) {
    if (&front.view() != this || &back.view() != this || !is_linked(front) || !is_linked(back) ||
        back.is_before(front)) {
        throw std::invalid_argument("Txt_text_view::add_virtual_token() - no run of this view");
    }
    return extras().virtual_tokens.emplace_back(type, front, back);
}

// Without extras there is no list whose ends these could be; two iterators of none are equal, too.
Txt_text_view::Const_virtual_iterator Txt_text_view::vbegin() const {
    return extras_ != nullptr ? extras_->virtual_tokens.begin() : Const_virtual_iterator();
}

Txt_text_view::Virtual_iterator Txt_text_view::vbegin() {
    return extras().virtual_tokens.begin();
}

Txt_text_view::Const_virtual_iterator Txt_text_view::vend() const {
    return extras_ != nullptr ? extras_->virtual_tokens.end() : Const_virtual_iterator();
}

Txt_text_view::Virtual_iterator Txt_text_view::vend() {
    return extras().virtual_tokens.end();
}

// A virtual token that is unlinked lives on in the other list: whoever took it out may hold on to
// it and put it back.
bool Txt_text_view::link_virtual(const Txt_virtual_token& token) {
    return !is_locked() &&
           move_token(token, extras().unlinked_virtual_tokens, extras().virtual_tokens);
}

bool Txt_text_view::unlink_virtual(const Txt_virtual_token& token) {
    return !is_locked() &&
           move_token(token, extras().virtual_tokens, extras().unlinked_virtual_tokens);
}

// An unlinked token keeps its neighbours, but they know it no more.
bool Txt_text_view::is_linked(const Txt_physical_token& token) const {
    return (token.previous_ != nullptr ? token.previous_->next_ : front_) == &token;
}

// An end of the list counts as a neighbour of the first and of the last token.
void Txt_text_view::set_neighbours(Txt_physical_token& token, Txt_physical_token* next_of_previous,
                                   Txt_physical_token* previous_of_next) {
    (token.previous_ != nullptr ? token.previous_->next_ : front_) = next_of_previous;
    (token.next_ != nullptr ? token.next_->previous_ : back_) = previous_of_next;
    is_numbered_ = false;
}

// A token goes back between its former neighbours, which must be next to each other. They are not
// if the token is linked already.
bool Txt_text_view::link(Txt_physical_token& token) {
    const bool fits =
        (token.previous_ != nullptr ? token.previous_->next_ : front_) == token.next_ &&
        (token.next_ != nullptr ? token.next_->previous_ : back_) == token.previous_;
    if (is_locked() || is_open_ || !fits) return false;
    set_neighbours(token, &token, &token);
    return true;
}

// Keeps its own links, which say where it goes back to.
bool Txt_text_view::unlink(Txt_physical_token& token) {
    if (is_locked() || is_open_ || !is_linked(token)) return false;
    forget(token);
    set_neighbours(token, token.next_, token.previous_);
    return true;
}

// Drops the token's associations, and the virtual tokens that begin or end with it.
void Txt_text_view::forget(const Txt_physical_token& token) {
    if (extras_ == nullptr) return; // as most views, and then there is nothing to search
    remove_associations(token);
    const auto ends_there = [&](const Txt_virtual_token& run) {
        if (&run.front() != &token && &run.back() != &token) return false;
        remove_associations(run);
        return true;
    };
    extras_->virtual_tokens.remove_if(ends_there);
    extras_->unlinked_virtual_tokens.remove_if(ends_there);
}

// Numbers all tokens at once, and again only after the order has changed. Otherwise each comparison
// of two tokens would take a walk.
void Txt_text_view::number_tokens() {
    if (is_numbered_) return;
    std::size_t position = 0;
    for (Txt_physical_token* token = front_; token != nullptr; token = token->next_) {
        token->position(position++);
    }
    is_numbered_ = !is_open_; // tokens that are added after this have no number yet
}

// Drops what refers to tokens first, then the tokens.
bool Txt_text_view::purge() {
    if (is_locked() || is_open_) return false;
    if (extras_ != nullptr) {
        extras_->virtual_tokens.clear();
        extras_->unlinked_virtual_tokens.clear();
        extras_->associations.clear();
    }
    destroy_tokens(); // in place: their memory is their maker's
    front_ = nullptr;
    back_ = nullptr;
    return true;
}

char32_t Txt_text_view::get_redaction_character() const {
    const auto* const extras = extras_.get(); // the linter loses sight of the pointer otherwise
    return extras != nullptr ? extras->redaction_character : REDACTION_CHARACTER;
}

void Txt_text_view::set_redaction_character(char32_t character) {
    extras().redaction_character = character;
}

// One 16-bit unit a character, whatever it takes the place of: lengths then tell nothing more.
std::u16string Txt_text_view::redaction(std::size_t count) const {
    return std::u16string(count, static_cast<char16_t>(get_redaction_character()));
}

// Counts when asked, not while tokens are added: few callers ask.
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

// A given table is shared between views, whose texts repeat. A table of the view's own is made for
// the first text that needs one; the texts of most tokens stay in the store.
std::u16string_view Txt_text_view::insert_text(std::u16string_view text) {
    return (table_ != nullptr ? *table_ : extras().table).insert(text);
}

// Trailers are short and repeat even more than texts do; one table serves both.
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

// Not while content is being added, when the order still changes.
void Txt_text_view::lock() {
    if (is_open_) throw std::logic_error("Txt_text_view::lock() - content not ended");
    ++extras().locks;
}

void Txt_text_view::unlock() {
    if (!is_locked()) throw std::logic_error("Txt_text_view::unlock() - view is not locked");
    --extras().locks;
}

} // namespace txt
