#pragma once

#include "records/record_layout.hpp"

#include <cstdint>
#include <span>

namespace tla {

// The record of version 2 that the bytes begin with, its closing byte included, whatever that is;
// empty when they do not hold it whole.
[[nodiscard]] inline std::span<const std::byte> whole_record(std::span<const std::byte> bytes,
                                                             std::size_t field_count) {
    const Tla_record_extent extent = tla_measure_record(bytes, field_count);
    return extent.counts_known && extent.size <= bytes.size() ? bytes.first(extent.size)
                                                              : bytes.first(0);
}

[[nodiscard]] inline bool is_closed(std::span<const std::byte> record) {
    return record.back() == std::byte{TLA_RECORD_END};
}

[[nodiscard]] inline Tla_token_value value_at(std::span<const std::byte> values,
                                              std::size_t index) {
    return scl::scl_load_be<Tla_token_value>(&values[index * TLA_TOKEN_VALUE_BYTES]);
}

// Whether a field of a record, which has it, has these token values. In place: every record that a
// lookup comes upon is asked.
[[nodiscard]] inline bool field_holds(std::span<const std::byte> record, std::size_t field,
                                      std::span<const Tla_token_value> values) {
    const auto own = tla_field_values(record, field);
    if (own.size() != values.size_bytes()) return false;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (value_at(own, i) != values[i]) return false;
    }
    return true;
}

} // namespace tla
