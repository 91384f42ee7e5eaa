#pragma once

#include "scl/io/scl_buffer.hpp"

#include <functional>
#include <utility>

namespace test {

// Hides that the bytes of another buffer are in memory as one piece, so that streams read ahead as
// they do from a file. It knows its size in bytes alone. Reading from `fails_from` on fails.
class Piecewise_buffer final : public scl::Scl_buffer {
public:
    explicit Piecewise_buffer(const scl::Scl_buffer& whole, std::uint64_t failing = NEVER)
        : fails_from(failing), whole_(whole) {}

    [[nodiscard]] std::uint64_t size(bool /*in_units*/, scl::Scl_status& status) const override {
        if (size_fault) size_fault(status);
        return whole_.size(false, status);
    }
    [[nodiscard]] std::span<const std::byte> contents() const override {
        if (contents_fault) contents_fault();
        return {};
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        scl::Scl_status& status) const override {
        const std::size_t count = whole_.read_at(offset, bytes, status);
        if (offset + count <= fails_from) return count;
        status.push(scl::SCL_STATUS_READ_FAILED);
        return 0;
    }

    static constexpr std::uint64_t NEVER = ~std::uint64_t{0};
    std::uint64_t fails_from;
    std::function<void(scl::Scl_status&)> size_fault;
    std::function<void()> contents_fault;

private:
    const scl::Scl_buffer& whole_;
};

} // namespace test
