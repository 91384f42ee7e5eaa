#pragma once

#include <cstdint>

namespace tla {

// How many pairs of a key table share one sample of the index in memory: the first of four sizes
// that keeps the samples near 16,384, or, for the last size, near 32,768; 0 when none does. The
// product of the two counts wraps at 32 bits.
[[nodiscard]] constexpr std::uint32_t index_block_size(std::uint32_t record_count,
                                                       std::uint16_t key_count) {
    constexpr std::uint32_t MOST_SAMPLES = 16384;
    const std::uint32_t pairs = record_count * key_count;
    if (pairs / 4096 <= MOST_SAMPLES) return 4096;
    if (pairs / 8192 <= MOST_SAMPLES) return 8192;
    if (pairs / 12288 <= MOST_SAMPLES) return 12288;
    if (pairs / 16384 <= 2 * MOST_SAMPLES) return 16384;
    return 0;
}

} // namespace tla
