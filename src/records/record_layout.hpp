#pragma once

#include "scl/io/scl_endian.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

namespace tla {

// The layout of a record, the same in the scratch file and in a data set file: for each field a
// 16-bit count and that many 64-bit token values, after the last field one byte 0x00. Numbers are
// big-endian, so that equal bytes are equal values whatever machine hashes them. Nothing tells a
// record's size in advance: the way through is from count to count. Sizes in bytes.
using Tla_token_count = std::uint16_t; // wraps: 65,536 tokens count as none
using Tla_token_value = std::uint64_t;

inline constexpr std::size_t TLA_COUNT_BYTES = sizeof(Tla_token_count);
inline constexpr std::size_t TLA_TOKEN_VALUE_BYTES = sizeof(Tla_token_value);
inline constexpr std::uint8_t TLA_RECORD_END = 0;
inline constexpr std::size_t TLA_RECORD_END_BYTES = 1;

// Of a field, by its count.
[[nodiscard]] constexpr std::size_t tla_field_size(Tla_token_count count) {
    return TLA_COUNT_BYTES + TLA_TOKEN_VALUE_BYTES * count;
}

// Of a field, by its bytes, of which the count must be there.
[[nodiscard]] inline std::size_t tla_field_size(const std::byte* field) {
    return tla_field_size(scl::scl_load_be<Tla_token_count>(field));
}

// How far a record reaches, as far as its bytes tell.
struct Tla_record_extent {
    std::size_t size;  // the closing byte included
    bool counts_known; // when not, there are too few bytes to tell, and more than `size` are needed
};

[[nodiscard]] inline Tla_record_extent tla_measure_record(std::span<const std::byte> bytes,
                                                          std::size_t field_count) {
    std::size_t size = 0;
    for (std::size_t field = 0; field < field_count; ++field) {
        if (bytes.size() < size + TLA_COUNT_BYTES) return {size + TLA_COUNT_BYTES, false};
        size += tla_field_size(bytes.data() + size);
    }
    return {size + TLA_RECORD_END_BYTES, true};
}

// The values of one field of a record, without the count. The record has more fields than `field`.
[[nodiscard]] inline std::span<const std::byte> tla_field_values(std::span<const std::byte> record,
                                                                 std::size_t field) {
    const std::byte* at = record.data();
    for (; field > 0; --field) {
        at += tla_field_size(at);
    }
    return {at + TLA_COUNT_BYTES, tla_field_size(at) - TLA_COUNT_BYTES};
}

} // namespace tla
