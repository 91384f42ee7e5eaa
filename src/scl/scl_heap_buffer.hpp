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
    // Empties it, keeping its memory.
    void clear() { bytes_.clear(); }

private:
    std::vector<std::byte> bytes_;
};

} // namespace scl
