#include "records/values/tla_key_hash.hpp"

#include "scl/io/scl_endian.hpp"

namespace tla {

// Value by value: a lookup need not lay the values out as a record first.
std::uint64_t tla_key_hash(std::span<const std::uint64_t> values) {
    scl::Scl_crc64 crc;
    for (const std::uint64_t value : values) {
        scl::Scl_raw<std::uint64_t> raw;
        scl::scl_store_be(raw.data(), value);
        crc.update(raw);
    }
    return crc.result(true);
}

} // namespace tla
