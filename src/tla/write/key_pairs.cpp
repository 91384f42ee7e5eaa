#include "tla/write/key_pairs.hpp"

#include "records/values/record_layout.hpp"
#include "records/values/tla_key_hash.hpp"
#include "tla/write/record_comparer.hpp"

namespace tla {

// The fingerprint goes into bits of the offset that no offset of this file needs. It tells most
// records of equal hash apart without reading them.
void Key_pairs::add(std::span<const std::byte> record, std::uint64_t offset) {
    const std::span<const std::byte> values = tla_field_values(record, key_field_);
    sorter_.add({tla_key_hash(values), tagger_.tagged(offset, record_fingerprint(record))});
}

} // namespace tla
