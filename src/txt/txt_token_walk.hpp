#pragma once

#include "scl/text/scl_text_span.hpp"
#include "scl/text/scl_utf.hpp"
#include "txt/word_runs.hpp"
#include "txt/word_state.hpp"

#include <cstddef>
#include <cstdint>

#pragma GCC visibility push(default) // installed

namespace txt {

namespace impl {

// Walks over one text. Tokens are views of it, so nothing is copied.
template <typename Unit, typename Take>
class Token_walk {
public:
    Token_walk(scl::Scl_text_span<Unit> text, Take& take)
        : text_(text), take_(take), at_(text.begin) {}

    void run() {
        for (;;) {
            if (!state_.is_open()) skip_spaces();
            take_run();
            if (at_ != text_.end) {
                take_character();
            } else if (take_end()) {
                return;
            }
        }
    }

private:
    // In ASCII nothing but white space joins a white space before it, so a stretch of white space
    // is a whole trailer.
    void skip_spaces() {
        if constexpr (sizeof(Unit) == 1) {
            const Unit* const from = at_;
            for (; at_ != text_.end; ++at_) {
                const Unit unit = *at_; // NOLINT: never null where there is a unit
                const auto code_point = static_cast<unsigned char>(unit);
                if (code_point > ' ' || !scl::scl_is_white_space(code_point)) break;
            }
            if (from == text_.begin && at_ != from) take_(from, from);
        }
    }

    void take_run() {
        if (!state_.takes_runs()) return;
        const std::size_t length = run_length(text_, at_);
        if (length == 0) return;
        if (!state_.is_open()) start_ = at_;
        at_ += length;
        state_.take_run(unit_bits(at_ - 1));
    }

    void take_character() {
        const Unit* next = at_;
        const char32_t character = read(next);
        switch (state_.take(scl::scl_unicode_bits(character))) {
        case Word_action::start:
            start_ = at_;
            [[fallthrough]];
        case Word_action::join:
            at_ = next;
            return;
        case Word_action::look:
            checkpoint_ = at_;
            return;
        case Word_action::roll_back:
            at_ = checkpoint_;
            return;
        default:
            end_segment();
        }
    }

    // True when all is done. After a roll-back there are characters to be taken again.
    bool take_end() {
        switch (state_.take_end()) {
        case Word_action::roll_back:
            at_ = checkpoint_;
            return false;
        case Word_action::part:
            end_segment();
            return true;
        default:
            return true;
        }
    }

    void end_segment() {
        if (!state_.in_trailer()) {
            take_(start_, at_);
        } else if (start_ == text_.begin) {
            take_(start_, start_);
        }
    }

    [[nodiscard]] char32_t read(const Unit*& at) const {
        if constexpr (sizeof(Unit) == 1) {
            return static_cast<unsigned char>(*at++); // NOLINT: as above
        } else {
            std::size_t length = 0;
            const std::basic_string_view<Unit> rest(at, static_cast<std::size_t>(text_.end - at));
            const char32_t character = scl::scl_utf16_next(rest, length);
            at += length;
            return character;
        }
    }

    scl::Scl_text_span<Unit> text_;
    Take& take_;
    Word_state state_;
    const Unit* at_;
    const Unit* start_ = nullptr;      // of the open segment
    const Unit* checkpoint_ = nullptr; // where a character was only looked at
};

} // namespace impl

// Whether the text is one token that fits a block, as most values are; takes one look. False says
// nothing: the text may be one token all the same.
template <typename Unit>
[[nodiscard]] bool txt_is_short_run(scl::Scl_text_span<Unit> text) {
    return impl::is_short_run(text);
}

// Whether the text is a run of letters, digits and connectors, and so one token. False says
// nothing: a word of some scripts, or with marks, is no run.
template <typename Unit>
[[nodiscard]] bool txt_is_run(scl::Scl_text_span<Unit> text) {
    return !text.empty() && impl::run_length(text, text.begin) == text.size();
}

// Calls `take(begin, end)` for each token of a text, in order; units are ASCII bytes or UTF-16.
// White space at the front is a trailer, and a trailer belongs to a token: an empty one comes
// first.
//
// Twins: Txt_tokeniser finds the same tokens, character by character and with its callers'
// checkpoints. Both ask impl::Word_state. Tested by Token_values.AreThoseOfTheView, and for
// bytes by Token_values.OfBytesAreThoseOfUnits.
template <typename Unit, typename Take>
void txt_walk_tokens(scl::Scl_text_span<Unit> text, Take&& take) {
    impl::Token_walk<Unit, Take>(text, take).run();
}

} // namespace txt

#pragma GCC visibility pop
