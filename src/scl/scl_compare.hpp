#pragma once

#include <string_view>

namespace scl {

// Comparison that ignores case: the simple case foldings (CaseFolding.txt, status C and S) are
// compared code point by code point. The result is 0 for texts that are equal so, else its sign is
// that of the first difference in code point order; a text that another begins with comes first.
// U+0000 inside a text is an ordinary code point. A byte that is no UTF-8 compares as U+DC00 +
// byte, a lone surrogate as its own value.

[[nodiscard]] int scl_utf8_compare_nc(std::string_view a, std::string_view b);
[[nodiscard]] int scl_utf16_compare_nc(std::u16string_view a, std::u16string_view b);

} // namespace scl
