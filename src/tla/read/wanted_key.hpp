#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tla {

// What a lookup looks for. `field` is the key field's place in the field list; when the list has no
// such field it is past its end, and nothing is found.
struct Wanted_key {
    std::size_t field;
    std::uint64_t hash;                    // the key hash that goes with the values
    std::span<const std::uint64_t> values; // token values
};

} // namespace tla
