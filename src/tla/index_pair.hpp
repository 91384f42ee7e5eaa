#pragma once

#include <cstdint>

namespace tla {

// An entry of a key table: where the records with a key hash stand.
struct Index_pair {
    std::uint64_t key_hash;
    std::uint64_t record_offset; // in bytes from the start of the file
};
static_assert(sizeof(Index_pair) == 16);

[[nodiscard]] constexpr bool hash_less(const Index_pair& a, const Index_pair& b) {
    return a.key_hash < b.key_hash;
}

} // namespace tla
