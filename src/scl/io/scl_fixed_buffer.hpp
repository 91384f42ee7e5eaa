#pragma once

#include "scl/io/scl_buffers.hpp"

#include <cassert>
#include <cstddef>
#include <memory>
#include <span>

namespace scl {

// A buffer in memory of a size that is known when it is made. Fill room() before the first read.
// Memory exhausted is thrown (std::bad_alloc).
class Scl_fixed_buffer final : public Scl_memory_buffer {
public:
    explicit Scl_fixed_buffer(std::size_t size);

    // The whole buffer, to be written to. Not cleared.
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
