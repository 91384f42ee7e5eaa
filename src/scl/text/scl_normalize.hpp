#pragma once

#include "scl/text/scl_utf.hpp"

#include <string>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace scl {

class Scl_status;

// True when the text is well-formed UTF-16, that is, holds no lone surrogate.
[[nodiscard]] bool scl_can_normalize(std::u16string_view text);

namespace impl {

// True when normalisation touches none of the units. One look-up a unit.
[[nodiscard]] bool scl_is_untouched(std::u16string_view text);

} // namespace impl

// True for text of plain characters only: NFC_Quick_Check Yes and combining class 0, so that Form C
// neither changes them nor combines them with what is before. Such text is well formed and in Form
// C. Most text is plain: Latin with precomposed letters, Cyrillic, Han, Hangul syllables. False
// says nothing: other text may be in Form C too, and characters beyond U+FFFF never count as plain.
[[nodiscard]] inline bool scl_is_plain(std::u16string_view text) {
    return scl_all_bits(text) < 0x300 || impl::scl_is_untouched(text);
}

// How many units from `at` on must be normalised together: the character at `at` and all that may
// combine with it. `at` is below the text's size, and is 0 or the end of such a piece.
[[nodiscard]] std::size_t scl_joined_length(std::u16string_view text, std::size_t at);
// How many units the character at `at` has: 1, or 2 for a surrogate pair.
[[nodiscard]] std::size_t scl_character_length(std::u16string_view text, std::size_t at);

// True when the text is in Normalization Form C (Unicode Standard Annex #15). A lone surrogate
// counts as a character that nothing composes with.
[[nodiscard]] bool scl_is_normalized(std::u16string_view text);

// Replaces `out` by `in` in Normalization Form C. `in` may view the text of `out`. Lone surrogates
// are carried over as they are. Any text has a normal form, so the status never gets a code; memory
// exhausted is thrown (std::bad_alloc). Linear in the length of `in`, but for the
// sorting of a run of combining marks; text that is in the form already is only copied.
//
// Form C and not KC: compatibility characters keep their identity, as a no-break space in a card
// number does.
void scl_normalize(std::u16string_view in, std::u16string& out);
void scl_normalize(std::u16string_view in, std::u16string& out, Scl_status& status);

} // namespace scl

#pragma GCC visibility pop
