#include "tla/build/key_pairs.hpp"

#include "records/record_layout.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "tla/build/record_comparer.hpp"

namespace tla {

// The values are hashed as they stand in the record, big-endian and without their count: a lookup
// comes to the same hash from the values alone, on any machine.
void Key_pairs::add(std::span<const std::byte> record, std::uint64_t offset) {
    const std::span<const std::byte> values = tla_field_values(record, key_field_);
    const std::uint64_t hash =
        scl::Scl_crc64::calculate(values.data(), values.size(), scl::Scl_crc64::INITIAL);
    sorter_.add({hash, tagger_.tagged(offset, record_fingerprint(record))});
}

} // namespace tla
