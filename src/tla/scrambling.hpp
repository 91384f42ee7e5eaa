#pragma once

#include <array>
#include <cstdint>

namespace tla {

// Records of version 1 are text whose bytes are scrambled by an exclusive or with a key of eight
// bytes, over and over from the first record's first byte to the last record's end.
inline constexpr std::array<std::uint8_t, 8> SCRAMBLING_KEY = {0x3C, 0x7E, 0x91, 0xD4,
                                                               0x0A, 0x6B, 0xE2, 0x58};

// The way there and back. `position` counts from the first record.
[[nodiscard]] constexpr char scrambled(char byte, std::uint64_t position) {
    return static_cast<char>(byte ^ SCRAMBLING_KEY[position % SCRAMBLING_KEY.size()]);
}

inline constexpr char TEXT_END = '\n';        // unscrambled, after every text but the last
inline constexpr char TEXT_RECORD_END = '\0'; // unscrambled, after the last one

} // namespace tla
