#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tla {

// The layout of a data set file, but for its records (records/values/record_layout.hpp);
// docs/file-format.md explains it, docs/version-1.md what is different there. Offsets in bytes.
inline constexpr std::string_view TLA_DATA_SET_MAGIC = "KQZVDaSe";

inline constexpr std::uint64_t TLA_CHECKSUM_OFFSET = 8;
inline constexpr std::uint64_t TLA_CHECKED_FROM = 16; // the checksum covers all bytes from here on
inline constexpr std::uint64_t TLA_FIELD_LIST_OFFSET = 32;

inline constexpr char TLA_FIELD_NAME_END = '\n';
inline constexpr char TLA_NAME_END = '\0';
inline constexpr char TLA_FIELD_LIST_END = '\0';

inline constexpr std::size_t TLA_INDEX_PAIR_BYTES = 16; // a key hash, then a record's offset

// The first record and the pairs of each key table begin at multiples of this, so that a reader
// that has the file in memory can load their numbers directly.
inline constexpr std::uint64_t TLA_ALIGNMENT = 8;

[[nodiscard]] constexpr std::uint64_t tla_aligned(std::uint64_t offset) {
    return (offset + TLA_ALIGNMENT - 1) / TLA_ALIGNMENT * TLA_ALIGNMENT;
}

// Records of version 1 are text whose bytes are scrambled by an exclusive or with a key of eight
// bytes, over and over from the first record's first byte to the last record's end.
inline constexpr std::array<std::uint8_t, 8> TLA_SCRAMBLING_KEY = {0x3C, 0x7E, 0x91, 0xD4,
                                                                   0x0A, 0x6B, 0xE2, 0x58};

// The way there and back. `position` counts from the first record.
[[nodiscard]] constexpr char tla_scrambled(char byte, std::uint64_t position) {
    return static_cast<char>(byte ^ TLA_SCRAMBLING_KEY[position % TLA_SCRAMBLING_KEY.size()]);
}

inline constexpr char TLA_TEXT_END = '\n';        // unscrambled, after every text but the last
inline constexpr char TLA_TEXT_RECORD_END = '\0'; // unscrambled, after the last one

} // namespace tla
