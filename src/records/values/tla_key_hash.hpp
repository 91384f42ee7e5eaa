#pragma once

#include "scl/crc/scl_crc64.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

namespace tla {

// The key hash of a field, as key tables of version 2 hold it: the CRC-64 of the field's token
// values, big-endian and without their count. A field without values has the key hash 0. A build
// has the values as bytes of a record, a lookup has them as numbers; both give the same hash.
// Tested by Value_tokens.OfALookupAreThoseOfARecord.
[[nodiscard]] inline std::uint64_t tla_key_hash(std::span<const std::byte> values_in_record) {
    if (values_in_record.size() == sizeof(std::uint64_t)) {
        return scl::Scl_crc64::calculate_8(values_in_record.data());
    }
    return scl::Scl_crc64::calculate(values_in_record.data(), values_in_record.size(),
                                     scl::Scl_crc64::INITIAL);
}
[[nodiscard]] std::uint64_t tla_key_hash(std::span<const std::uint64_t> values);

} // namespace tla
