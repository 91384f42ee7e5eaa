#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tla {

// The layout of a data set file; docs/file-format.md explains it. Offsets in bytes.
inline constexpr std::string_view DATA_SET_MAGIC = "KQZVDaSe";
inline constexpr std::uint16_t DATA_SET_VERSION = 2;

inline constexpr std::uint64_t CHECKSUM_OFFSET = 8;
inline constexpr std::uint64_t CHECKED_FROM = 16; // the checksum covers all bytes from here on
inline constexpr std::uint64_t FIELD_LIST_OFFSET = 32;

inline constexpr char FIELD_NAME_END = '\n';
inline constexpr char NAME_END = '\0';
inline constexpr char FIELD_LIST_END = '\0';

inline constexpr std::size_t TOKEN_VALUE_BYTES = 8;
inline constexpr std::size_t INDEX_PAIR_BYTES = 16;

// Records and the pairs of key tables begin at multiples of this.
inline constexpr std::uint64_t ALIGNMENT = 8;

[[nodiscard]] constexpr std::uint64_t aligned(std::uint64_t offset) {
    return (offset + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
}

} // namespace tla
