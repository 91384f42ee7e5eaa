#pragma once

#include <string>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace scl {

// Lower-cases in place: the default, locale-free full mapping of the Unicode Standard (section
// 3.13), with the context rule Final_Sigma, in which characters that are Case_Ignorable are
// skipped whether they are Cased or not. U+0130 becomes two units; every other character keeps its
// length.
//
// A text that was in Normalization Form C is in it afterwards (lower-casing can bring a pair
// together that composes, as in J with U+030C). A text that was not, or that holds a lone
// surrogate, is only mapped. Linear in the length of the text; no memory is needed but for a text
// that holds U+0130 or must be composed, and memory exhausted the only failure (std::bad_alloc).
void scl_lower(std::u16string& text);

// The same, and faster, for a text that is known to be in Normalization Form C and to hold no lone
// surrogate, as scl_normalize makes one of what scl_can_normalize accepts.
void scl_lower_normalized(std::u16string& text);

// Comparison that ignores case: the simple case foldings (CaseFolding.txt, status C and S) are
// compared code point by code point. The result is 0 for texts that are equal so, else its sign is
// that of the first difference in code point order; a text that another begins with comes first.
// U+0000 inside a text is an ordinary code point. A byte that is no UTF-8 compares as U+DC00 +
// byte, a lone surrogate as its own value.

[[nodiscard]] int scl_utf8_compare_nc(std::string_view a, std::string_view b);
[[nodiscard]] int scl_utf16_compare_nc(std::u16string_view a, std::u16string_view b);

} // namespace scl

#pragma GCC visibility pop
