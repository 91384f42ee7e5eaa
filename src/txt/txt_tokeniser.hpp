#pragma once

#include "scl/text/scl_unicode.hpp"
#include "txt/txt_text_store.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/word_state.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace txt {

// What the tokeniser asks of its caller after a character, or at the end of the data.
enum class Txt_parse_operation : std::uint32_t {
    start = 0,      // the character starts a token or a trailer
    go_on = 1,      // the character belongs to it
    checkpoint = 2, // note the token so far; give the character again
    roll_back = 3,  // back to the checkpoint: its token, its character
    token = 4,      // a token ended before the character; give the character again
    trailer = 5,    // a trailer ended before the character; give the character again
    finish = 6,     // nothing was open at the end
};

// Splits text into tokens and trailers, a character at a time. Boundaries are the word boundaries
// of Unicode Standard Annex #29. A segment that starts with white space is a trailer, and so are
// those after it: together they are one. Every other segment is a token.
//
// The caller carries out the operation that comes back for each character (Txt_parse_operation),
// and keeps the checkpoints. The token's text is the store's open text. Time is linear in the text.
class Txt_tokeniser final {
public:
    // Updates text, type and operation.
    void process(char32_t character, Txt_text_store& text, std::uint32_t& type,
                 Txt_parse_operation& operation);

    // The same for the end of the data. After `roll_back`, the caller goes on from the checkpoint.
    void breakpoint(Txt_text_store& text, std::uint32_t& type, Txt_parse_operation& operation);

    // Takes the leading units (16-bit, little-endian) that surely extend the open token, or start
    // one, and returns their size in bytes. When it is not 0, type and operation (`start` or
    // `go_on`) are updated. process() would do the same, unit by unit.
    [[nodiscard]] std::size_t run(std::span<const std::byte> units, Txt_text_store& text,
                                  std::uint32_t& type, Txt_parse_operation& operation) {
        if (!type_settled_ || !state_.takes_runs()) return 0;
        return take_run(units, text, type, operation);
    }

private:
    using Class = scl::Scl_unicode_code_point_type;

    [[nodiscard]] std::size_t take_run(std::span<const std::byte> units, Txt_text_store& text,
                                       std::uint32_t& type, Txt_parse_operation& operation);
    void settle_type(Class next, std::uint32_t& type);
    [[nodiscard]] Txt_parse_operation operation_before(impl::Word_action action) const;

    impl::Word_state state_;
    bool type_settled_ = true; // false while the open segment holds nothing visible by itself
};

inline void Txt_tokeniser::process(char32_t character, Txt_text_store& text, std::uint32_t& type,
                                   Txt_parse_operation& operation) {
    const std::uint8_t bits = scl::scl_unicode_bits(character);
    const auto character_class = static_cast<Class>(bits & 7U);
    const impl::Word_action action = state_.take(bits);
    if (action == impl::Word_action::join) {
        if (!type_settled_) settle_type(character_class, type);
        text.append(character);
        operation = Txt_parse_operation::go_on;
    } else if (action == impl::Word_action::start) {
        settle_type(character_class, type);
        text.clear();
        text.append(character);
        operation = Txt_parse_operation::start;
    } else {
        operation = operation_before(action);
    }
}

// For a character that is not taken yet.
inline Txt_parse_operation Txt_tokeniser::operation_before(impl::Word_action action) const {
    switch (action) {
    case impl::Word_action::part:
        return state_.in_trailer() ? Txt_parse_operation::trailer : Txt_parse_operation::token;
    case impl::Word_action::look:
        return Txt_parse_operation::checkpoint;
    case impl::Word_action::roll_back:
        return Txt_parse_operation::roll_back;
    default:
        return Txt_parse_operation::finish;
    }
}

inline void Txt_tokeniser::breakpoint(Txt_text_store& /*text*/, std::uint32_t& /*type*/,
                                      Txt_parse_operation& operation) {
    operation = operation_before(state_.take_end());
}

// The first character that is visible by itself decides; a segment without one is a symbol.
inline void Txt_tokeniser::settle_type(Class next, std::uint32_t& type) {
    type = txt_token_type(next);
    type_settled_ = next != Class::attached;
}

} // namespace txt
