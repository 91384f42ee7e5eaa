#include "scl/scl_heap_buffer.hpp"

#include <algorithm>

namespace scl {

void Scl_heap_buffer::write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                               Scl_status& status) {
    if (offset > bytes_.size()) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return;
    }
    const std::size_t over = std::min<std::size_t>(bytes.size(), bytes_.size() - offset);
    std::copy_n(bytes.begin(), over, bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
    bytes_.insert(bytes_.end(), bytes.begin() + static_cast<std::ptrdiff_t>(over), bytes.end());
}

} // namespace scl
