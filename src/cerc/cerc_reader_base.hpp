#pragma once

namespace cerc {

// What the readers of characters share.
class Cerc_reader_base {
public:
    // Read in place of a character when there is none left; no code point has this value.
    static constexpr char32_t END_OF_DATA = 0xFFFFFFFF;

    // At the front of content it says how that is encoded, and is no part of the text.
    static constexpr char16_t BYTE_ORDER_MARK = 0xFEFF;
};

} // namespace cerc
