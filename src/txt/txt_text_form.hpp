#pragma once

#include <cstdint>

namespace txt {

// Which text of a token is meant.
enum class Txt_text_form : std::uint32_t {
    whole = 0,   // as it stands; its length counts 16-bit units
    visible = 1, // without the characters that are not visible by themselves; counts characters
};

} // namespace txt
