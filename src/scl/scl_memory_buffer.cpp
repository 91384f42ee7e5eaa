#include "scl/scl_memory_buffer.hpp"

#include <algorithm>
#include <cstring>

namespace scl {

std::uint64_t Scl_memory_buffer::size(bool in_units, Scl_status& /*status*/) const {
    return in_units ? contents().size() / 2 : contents().size();
}

std::size_t Scl_memory_buffer::read_at(std::uint64_t offset, std::span<std::byte> bytes,
                                       Scl_status& status) const {
    const std::span<const std::byte> all = contents();
    if (offset > all.size()) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return 0;
    }
    const std::size_t count = std::min<std::size_t>(bytes.size(), all.size() - offset);
    if (count != 0) std::memcpy(bytes.data(), all.data() + offset, count);
    return count;
}

} // namespace scl
