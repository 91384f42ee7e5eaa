#include "scl/scl_buffer.hpp"

namespace scl {

void Scl_buffer::write_at(std::uint64_t /*offset*/, std::span<const std::byte> /*bytes*/,
                          Scl_status& status) {
    status.push(SCL_STATUS_OUT_OF_BOUNDS);
}

} // namespace scl
