#pragma once

#include <cstdint>

namespace txt {

// What the tokeniser asks of its caller after a character, or at the end of the data.
enum class Txt_parse_operation : std::uint32_t {
    start = 0,      // the character starts a token or a trailer
    go_on = 1,      // the character belongs to it
    checkpoint = 2, // note the token so far; give the character again
    roll_back = 3,  // back to the checkpoint: its token, its character
    token = 4,      // a token ended before the character; give the character again
    trailer = 5,    // a trailer ended before the character; give the character again
    finish = 6,     // nothing was open at the end
};

} // namespace txt
