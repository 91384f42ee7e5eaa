#pragma once

#include "scl/io/scl_buffer.hpp"
#include "scl/io/scl_endian.hpp"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace scl {

// Base of the buffers in memory: reading and size, by contents(). A read can only leave
// SCL_STATUS_OUT_OF_BOUNDS.
class Scl_memory_buffer : public Scl_buffer {
public:
    [[nodiscard]] std::uint64_t size(bool in_units, Scl_status& status) const final;
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        Scl_status& status) const final;
    [[nodiscard]] std::span<const std::byte> contents() const override = 0;
};

// A buffer that owns its bytes and grows; empty at first. Throws std::bad_alloc when memory runs
// out.
class Scl_heap_buffer final : public Scl_memory_buffer {
public:
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                  Scl_status& status) override;
    void truncate(std::uint64_t size, Scl_status& status) override;
    [[nodiscard]] std::span<const std::byte> contents() const override { return bytes_; }
    // Drops what lies from `size` on, which is not beyond the end; the memory is kept.
    void cut(std::size_t size) {
        assert(size <= bytes_.size());
        bytes_.resize(size);
    }

private:
    std::vector<std::byte> bytes_;
};

// A read-only buffer over a wide string, which it does not own and which must outlive it. Its bytes
// are the string's 16-bit units, little-endian, without a terminator.
class Scl_wstring_buffer final : public Scl_memory_buffer {
public:
    explicit Scl_wstring_buffer(std::u16string_view text) : text_(text) {
        if constexpr (std::endian::native == std::endian::big) {
            std::ranges::transform(text, std::back_inserter(swapped_), scl_byte_swapped<char16_t>);
            text_ = swapped_;
        }
    }

    [[nodiscard]] std::span<const std::byte> contents() const override {
        return std::as_bytes(std::span(text_));
    }

private:
    std::u16string_view text_;
    std::u16string swapped_; // empty where units lie little-endian in memory anyway
};

// A read view of a parent's bytes from `begin` up to `end`. Bounds that are out of order or outside
// the parent set SCL_STATUS_OUT_OF_BOUNDS and give an empty view; begin and end may both be the
// parent's size. The parent must outlive it. Reads leave what the parent's leave.
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

#pragma GCC visibility pop
