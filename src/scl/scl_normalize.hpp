#pragma once

#include <string>
#include <string_view>

namespace scl {

class Scl_status;

// True when the text is well-formed UTF-16, that is, holds no lone surrogate.
[[nodiscard]] bool scl_can_normalize(std::u16string_view text);

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
