#pragma once

#include "scl/scl_buffer.hpp"

namespace scl {

// A read view of a parent's bytes from `begin` up to `end`. Bounds that are out of order or outside
// the parent set SCL_STATUS_OUT_OF_BOUNDS and give an empty view. The parent must outlive it.
class Scl_sub_buffer final : public Scl_buffer {
public:
    Scl_sub_buffer(const Scl_buffer& parent, std::uint64_t begin, std::uint64_t end,
                   Scl_status& status);

    [[nodiscard]] std::uint64_t size(bool in_units, Scl_status& status) const override;
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        Scl_status& status) const override;
    [[nodiscard]] std::span<const std::byte> contents() const override;

private:
    const Scl_buffer& parent_;
    std::uint64_t begin_ = 0;
    std::uint64_t end_ = 0;
};

} // namespace scl
