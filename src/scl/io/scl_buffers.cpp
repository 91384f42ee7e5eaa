#include "scl/io/scl_buffers.hpp"

#include <algorithm>
#include <cstring>

namespace scl {

std::uint64_t Scl_memory_buffer::size(bool in_units, Scl_status& /*status*/) const {
    return in_units ? contents().size() / 2 : contents().size();
}

std::size_t Scl_memory_buffer::read_at(std::uint64_t offset, std::span<std::byte> bytes,
                                       Scl_status& status) const {
    const std::span<const std::byte> all = contents();
    // The end itself is a valid offset, with nothing to read.
    if (offset > all.size()) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return 0;
    }
    const std::size_t count = std::min<std::size_t>(bytes.size(), all.size() - offset);
    // An empty buffer may have a null address, which memcpy must not be given.
    if (count != 0) std::memcpy(bytes.data(), all.data() + offset, count);
    return count;
}

void Scl_heap_buffer::write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                               Scl_status& status) {
    if (offset > bytes_.size()) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return;
    }
    // Overwrites first, then appends. A resize() instead would write zeros to the new bytes.
    const std::size_t over = std::min<std::size_t>(bytes.size(), bytes_.size() - offset);
    std::copy_n(bytes.begin(), over, bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
    bytes_.insert(bytes_.end(), bytes.begin() + static_cast<std::ptrdiff_t>(over), bytes.end());
}

void Scl_heap_buffer::truncate(std::uint64_t size, Scl_status& status) {
    if (size > bytes_.size()) return status.push(SCL_STATUS_OUT_OF_BOUNDS);
    cut(size);
}

Scl_sub_buffer::Scl_sub_buffer(const Scl_buffer& parent, std::uint64_t begin, std::uint64_t end,
                               Scl_status& status)
    : parent_(parent) {
    // The bounds may come from a file. Both stay 0, which is an empty view, unless they are valid.
    const std::uint64_t limit = parent.size(false, status);
    if (status.has_failed()) return;
    if (begin > end || end > limit) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return;
    }
    begin_ = begin;
    end_ = end;
}

std::uint64_t Scl_sub_buffer::size(bool in_units, Scl_status& /*status*/) const {
    return in_units ? (end_ - begin_) / 2 : end_ - begin_;
}

std::size_t Scl_sub_buffer::read_at(std::uint64_t offset, std::span<std::byte> bytes,
                                    Scl_status& status) const {
    // Compares with a difference: begin_ + offset could wrap.
    if (offset > end_ - begin_) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return 0;
    }
    const std::size_t count = std::min<std::uint64_t>(bytes.size(), end_ - begin_ - offset);
    return parent_.read_at(begin_ + offset, bytes.first(count), status);
}

std::span<const std::byte> Scl_sub_buffer::contents() const {
    // A parent that is not in memory has no contents, and then neither has a part of it.
    const std::span<const std::byte> all = parent_.contents();
    return all.size() < end_ ? all.first(0) : all.subspan(begin_, end_ - begin_);
}

} // namespace scl
