#include "scl/scl_unbuffered_istream.hpp"

namespace scl {

std::size_t Scl_unbuffered_istream::read_at(std::uint64_t offset, std::size_t count,
                                            void* destination, Scl_status& status) const {
    if (buffer() == nullptr) return 0;
    return buffer()->read_at(offset, {static_cast<std::byte*>(destination), count}, status);
}

std::size_t Scl_unbuffered_istream::read_beyond_window(std::span<std::byte> bytes,
                                                       Scl_status& status) {
    const std::size_t count = buffer()->read_at(tell(), bytes, status);
    set_position(tell() + count);
    return count;
}

} // namespace scl
