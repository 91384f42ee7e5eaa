#include "scl/scl_sub_buffer.hpp"

#include <algorithm>

namespace scl {

Scl_sub_buffer::Scl_sub_buffer(const Scl_buffer& parent, std::uint64_t begin, std::uint64_t end,
                               Scl_status& status)
    : parent_(parent) {
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
    if (offset > end_ - begin_) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return 0;
    }
    const std::size_t count = std::min<std::uint64_t>(bytes.size(), end_ - begin_ - offset);
    return parent_.read_at(begin_ + offset, bytes.first(count), status);
}

std::span<const std::byte> Scl_sub_buffer::contents() const {
    const std::span<const std::byte> all = parent_.contents();
    return all.size() < end_ ? all.first(0) : all.subspan(begin_, end_ - begin_);
}

} // namespace scl
