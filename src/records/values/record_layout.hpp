#pragma once

#include "scl/io/scl_endian.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

// The layout of a record, the same in the scratch file and in a data set file of version 2, and all
// reading of a record that is in memory. Sizes in bytes, numbers big-endian:
//
//     for each field     for each of its tokens     after the last field
//     +---+---+          +---+---+-- ... --+---+    +------+
//     | count |          |     token value     |    | 0x00 |
//     +---+---+          +---+---+-- ... --+---+    +------+
//       2 bytes                 8 bytes              1 byte
//
// Big-endian, so that equal values are equal bytes on every machine and a hash of the bytes serves
// them all. Nothing tells a record's size in advance: a reader steps from count to count.

namespace tla {

using Tla_token_count = std::uint16_t; // wraps: 65,536 tokens count as none
using Tla_token_value = std::uint64_t;

inline constexpr std::size_t TLA_COUNT_BYTES = sizeof(Tla_token_count);
inline constexpr std::size_t TLA_TOKEN_VALUE_BYTES = sizeof(Tla_token_value);
inline constexpr std::uint8_t TLA_RECORD_END = 0;
inline constexpr std::size_t TLA_RECORD_END_BYTES = 1;

// The size of a field with this count of tokens.
[[nodiscard]] constexpr std::size_t tla_field_size(Tla_token_count count) {
    return TLA_COUNT_BYTES + TLA_TOKEN_VALUE_BYTES * count;
}

// The size of the field at the front of these bytes. The caller has checked that its count is
// there.
[[nodiscard]] inline std::size_t tla_field_size(const std::byte* field) {
    return tla_field_size(scl::scl_load_be<Tla_token_count>(field));
}

// The size of a record, as far as the bytes show it.
struct Tla_record_extent {
    std::size_t size;  // the closing byte included
    bool counts_known; // false when the bytes end before the last count; `size` is then too small
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

// The record at the front of `bytes`, with its closing byte, whatever that byte is; empty when
// `bytes` do not hold all of it.
[[nodiscard]] inline std::span<const std::byte> tla_whole_record(std::span<const std::byte> bytes,
                                                                 std::size_t field_count) {
    const Tla_record_extent extent = tla_measure_record(bytes, field_count);
    return extent.counts_known && extent.size <= bytes.size() ? bytes.first(extent.size)
                                                              : bytes.first(0);
}

[[nodiscard]] inline bool tla_is_closed(std::span<const std::byte> whole_record) {
    return whole_record.back() == std::byte{TLA_RECORD_END};
}

// The values of one field, without the count. The record is whole and has more fields than `field`.
[[nodiscard]] inline std::span<const std::byte> tla_field_values(std::span<const std::byte> record,
                                                                 std::size_t field) {
    const std::byte* at = record.data();
    for (; field > 0; --field) {
        at += tla_field_size(at);
    }
    return {at + TLA_COUNT_BYTES, tla_field_size(at) - TLA_COUNT_BYTES};
}

// One of a field's values.
[[nodiscard]] inline Tla_token_value tla_value_at(std::span<const std::byte> values,
                                                  std::size_t index) {
    return scl::scl_load_be<Tla_token_value>(&values[index * TLA_TOKEN_VALUE_BYTES]);
}

// Whether a field's values, as they stand in a record, are these. Compared in place: a lookup asks
// this of every record that a pair leads to.
[[nodiscard]] inline bool tla_values_equal(std::span<const std::byte> own,
                                           std::span<const Tla_token_value> values) {
    if (own.size() != values.size_bytes()) return false;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (tla_value_at(own, i) != values[i]) return false;
    }
    return true;
}

// Whether a field of a whole record has these values.
[[nodiscard]] inline bool tla_field_holds(std::span<const std::byte> record, std::size_t field,
                                          std::span<const Tla_token_value> values) {
    return tla_values_equal(tla_field_values(record, field), values);
}

} // namespace tla
