#pragma once

#include "tla/scan/occurrence.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace tla {

// An occurrence of a key's value, and how it is written.
struct Key_place {
    Occurrence occurrence;
    std::string text; // the first characters of it
    bool text_is_whole;
};

// Occurrences of keys that wait until all is known of what stands around them, by their first
// characters, then their ends: a long one that begins before a short one is found after it.
using Key_places = std::multimap<std::pair<std::uint64_t, std::uint64_t>, Key_place>;

} // namespace tla
