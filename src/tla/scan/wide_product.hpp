#pragma once

#include <cstdint>

namespace tla {

// The 128 bits of a product.
struct Wide_product {
    std::uint64_t low;
    std::uint64_t high;
};

// One instruction where the processor has it. Processors of 32 bits have no such number, so there
// the product is put together from four of 32 by 32 bits: no sum below exceeds 64 bits.
[[nodiscard]] inline Wide_product wide_product(std::uint64_t a, std::uint64_t b) {
#if defined(__SIZEOF_INT128__)
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return {static_cast<std::uint64_t>(product), static_cast<std::uint64_t>(product >> 64U)};
#else
    constexpr std::uint64_t LOW = 0xFFFFFFFF;
    const std::uint64_t low = (a & LOW) * (b & LOW);
    const std::uint64_t cross = (a >> 32U) * (b & LOW) + (low >> 32U);
    const std::uint64_t other = (a & LOW) * (b >> 32U) + (cross & LOW);
    return {a * b, (a >> 32U) * (b >> 32U) + (cross >> 32U) + (other >> 32U)};
#endif
}

// Spreads all hashes evenly over indexes below `count`, by their upper bits and without a division.
[[nodiscard]] inline std::uint64_t index_of_hash(std::uint64_t hash, std::uint64_t count) {
    return wide_product(hash, count).high;
}

} // namespace tla
