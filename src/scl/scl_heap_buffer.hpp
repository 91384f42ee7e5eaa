#pragma once

#include "scl/scl_memory_buffer.hpp"

#include <vector>

namespace scl {

// A growable buffer of its own bytes, empty at first.
class Scl_heap_buffer final : public Scl_memory_buffer {
public:
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                  Scl_status& status) override;
    [[nodiscard]] std::span<const std::byte> contents() const override { return bytes_; }
    // Drops what stands from `size` on, which is not beyond the end; the memory is kept.
    void cut(std::size_t size) { bytes_.resize(size); }

private:
    std::vector<std::byte> bytes_;
};

} // namespace scl
