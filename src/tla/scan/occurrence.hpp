#pragma once

#include "tla/scan/scan_hashes.hpp"

#include <cstdint>

namespace tla {

// A place in a text: the byte, from its front, and the word as written that stands there, from 0.
struct Text_place {
    std::uint64_t byte;
    std::uint64_t word;
};

// A sequence of token values of some field, where it stands in a text. The last word is the one
// with the last character, the end is the byte behind that.
struct Occurrence {
    std::uint64_t hash;
    Text_place first;
    std::uint64_t last_word;
    std::uint64_t end;
    std::uint64_t line; // of the first character
    Value_kind kind;
};

} // namespace tla
