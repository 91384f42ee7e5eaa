#pragma once

#include <string>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace scl {

// Text as it is shown to people: control characters (C0, DEL, C1), and bytes that were no UTF-8, as
// \xNN, so that no name or value can steer a terminal or break a line.

// Adds to `shown`.
void scl_append_displayed(std::u16string& shown, std::u16string_view text);

// The same in UTF-8.
[[nodiscard]] std::string scl_displayed(std::u16string_view text);
[[nodiscard]] std::string scl_displayed(std::string_view bytes);

} // namespace scl

#pragma GCC visibility pop
