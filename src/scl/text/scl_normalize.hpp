#pragma once

#include "scl/text/scl_utf.hpp"

#include <string>
#include <string_view>

namespace scl {

class Scl_status;

// True when the text is well-formed UTF-16, that is, holds no lone surrogate.
[[nodiscard]] bool scl_can_normalize(std::u16string_view text);

// True for text wholly below U+0300 (nearly always: it may miss some). Such text is well formed and
// in any normal form that composes; Latin letters with accents of their own are part of it.
[[nodiscard]] inline bool scl_is_plain(std::u16string_view text) {
    return impl::scl_all_bits(text) < 0x300;
}

// True when the text is in Normalization Form C (Unicode Standard Annex #15). A lone surrogate
// counts as a character that nothing composes with.
[[nodiscard]] bool scl_is_normalized(std::u16string_view text);

// Replaces `out` by `in` in Normalization Form C. `in` may view the text of `out`. Lone surrogates
// are carried over as they stand. Nothing is ever pushed on the status: any text has a normal
// form, and memory exhausted is thrown (std::bad_alloc). Linear in the length of `in`, but for the
// sorting of a run of combining marks; text that is in the form already is only copied.
void scl_normalize(std::u16string_view in, std::u16string& out, Scl_status& status);

namespace impl {

// As scl::scl_normalize.
void scl_normalize(std::u16string_view in, std::u16string& out);

} // namespace impl

} // namespace scl
