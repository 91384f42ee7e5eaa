#include "tla/read/file_in_memory.hpp"

#include "scl/io/scl_fixed_buffer.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <limits>
#include <new>

namespace tla {

namespace {

// Large enough that the cost of a call does not show, small enough for the second-level cache.
constexpr std::size_t PIECE_BYTES = std::size_t{256} << 10;

} // namespace

// Piece by piece: each is summed up while it is in the cache.
std::unique_ptr<const scl::Scl_buffer>
read_into_memory(const scl::Scl_buffer& file, scl::Scl_crc64& crc, scl::Scl_status& status) try {
    const std::uint64_t size = file.size(false, status);
    if (size > std::numeric_limits<std::size_t>::max()) throw std::bad_alloc(); // of 32 bits
    auto bytes = std::make_unique<scl::Scl_fixed_buffer>(static_cast<std::size_t>(size));
    const std::span<std::byte> room = bytes->room();
    for (std::size_t at = 0; at < room.size() && !status.has_failed();) {
        const auto piece = room.subspan(at, std::min(PIECE_BYTES, room.size() - at));
        const bool is_first = at == 0;
        at += file.read_at(at, piece, status);
        crc.update(piece.subspan(is_first ? TLA_CHECKED_FROM : 0));
    }
    if (status.has_failed()) bytes.reset();
    return bytes;
} catch (const std::bad_alloc&) {
    status = scl::SCL_STATUS_NO_MEMORY;
    return nullptr;
}

} // namespace tla
