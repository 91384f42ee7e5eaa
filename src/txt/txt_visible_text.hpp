#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace txt {

// The text without the characters that attach to others and are not visible by themselves (class
// `attached`: marks and format characters).
[[nodiscard]] std::u16string txt_visible_text(std::u16string_view text);

// How many characters (code points) that leaves.
[[nodiscard]] std::size_t txt_visible_length(std::u16string_view text);

} // namespace txt
