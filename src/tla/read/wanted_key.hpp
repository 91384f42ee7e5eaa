#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tla {

// What a lookup looks for. `field` is the key field's index in the field list, or past its end when
// the list has no such field; nothing is found then.
struct Wanted_key {
    std::size_t field;
    std::uint64_t hash;                    // the key hash that goes with the values
    std::span<const std::uint64_t> values; // token values
};

} // namespace tla
