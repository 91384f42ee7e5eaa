#pragma once

#include <string>

namespace scl {

// Lower-cases in place: the default, locale-free full mapping of the Unicode Standard (section
// 3.13), with the context rule Final_Sigma, in which characters that are Case_Ignorable are
// skipped whether they are Cased or not. U+0130 becomes two units; every other character keeps its
// length.
//
// A text that was in Normalization Form C is in it afterwards (lower-casing can bring a pair
// together that composes, as in J with U+030C). A text that was not, or that holds a lone
// surrogate, is only mapped. Linear in the length of the text; no memory is needed
// but for a text that holds U+0130 or must be composed.
void scl_lower(std::u16string& text);

} // namespace scl
