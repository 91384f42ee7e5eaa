#include "scl/scl_checksum_buffer.hpp"

namespace scl {

void Scl_checksum_buffer::write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                                   Scl_status& status) {
    const std::uint64_t end = offset + bytes.size();
    if (end > next_ && offset <= next_) {
        checksum_.update(bytes.subspan(next_ - offset));
        next_ = end;
    }
    target_.write_at(offset, bytes, status);
}

} // namespace scl
