#pragma once

#include "scl/io/scl_buffers.hpp"

#include <cassert>
#include <cstddef>
#include <memory>
#include <span>

namespace scl {

// Bytes in memory whose number is known beforehand; they are written once, before anybody reads.
// Memory exhausted is thrown (std::bad_alloc).
class Scl_held_buffer final : public Scl_memory_buffer {
public:
    explicit Scl_held_buffer(std::size_t size);

    // Where the bytes are written to.
    [[nodiscard]] std::span<std::byte> room() { return {bytes_.get(), size_}; }
    [[nodiscard]] std::span<const std::byte> contents() const override {
        return {bytes_.get(), size_};
    }

private:
    struct Free {
        void operator()(std::byte* bytes) const;
    };

    std::unique_ptr<std::byte[], Free> bytes_;
    std::size_t size_;
};

} // namespace scl
