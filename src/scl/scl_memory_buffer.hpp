#pragma once

#include "scl/scl_buffer.hpp"

namespace scl {

// What the kinds of buffer that lie in memory share: reading and size, from contents().
class Scl_memory_buffer : public Scl_buffer {
public:
    [[nodiscard]] std::uint64_t size(bool in_units, Scl_status& status) const final;
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        Scl_status& status) const final;
    [[nodiscard]] std::span<const std::byte> contents() const override = 0;
};

} // namespace scl
