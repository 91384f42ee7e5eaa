#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tla {

// The key hash of a field, as key tables of version 2 hold it: the CRC-64 of the field's token
// values, big-endian and without their count. A field without values has the key hash 0. A build
// has the values as bytes of a record, a lookup has them as numbers; both give the same hash.
// Tested by Value_tokens.OfALookupAreThoseOfARecord.
[[nodiscard]] std::uint64_t tla_key_hash(std::span<const std::byte> values_in_record);
[[nodiscard]] std::uint64_t tla_key_hash(std::span<const std::uint64_t> values);

} // namespace tla
