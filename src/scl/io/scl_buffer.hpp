#pragma once

#include "scl/status/scl_status.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

#pragma GCC visibility push(default) // installed

namespace scl {

// What a stream does to line ends. Both modes hand every byte through unchanged: `text` says that
// the reader splits lines itself, `none` that the data has no lines.
enum class Scl_eol : unsigned { text = 0, none = 3 };

// Bytes that can be read, and in some classes written, at any offset. Offsets and sizes are in
// bytes. A buffer has no position; each stream attached to it has its own. So several streams, also
// of several threads, can read one buffer as long as nobody writes to it.
class Scl_buffer {
public:
    Scl_buffer() = default;
    Scl_buffer(const Scl_buffer&) = delete;
    Scl_buffer& operator=(const Scl_buffer&) = delete;
    virtual ~Scl_buffer() = default;

    // Size in bytes, or with `in_units` in whole 16-bit units. Makes no system call: a file's size
    // is known from its opening and its writes. The buffers of this library leave no code.
    [[nodiscard]] virtual std::uint64_t size(bool in_units, Scl_status& status) const = 0;

    // Reads bytes.size() bytes from `offset` on and returns how many it read: fewer only at the end
    // and after a failure. Readers rely on that: a short read without a reason may make them loop.
    // An offset beyond the end sets SCL_STATUS_OUT_OF_BOUNDS; a file may fail with
    // SCL_STATUS_READ_FAILED, and what arrived before that counts.
    virtual std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                                Scl_status& status) const = 0;

    // Writes all bytes, growing the buffer where they reach beyond its end. A kind that cannot be
    // written, and an offset beyond the end, set SCL_STATUS_OUT_OF_BOUNDS; a file may fail with
    // SCL_STATUS_WRITE_FAILED, and holds part of the bytes then.
    virtual void write_at(std::uint64_t /*offset*/, std::span<const std::byte> /*bytes*/,
                          Scl_status& status) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
    }

    // Cuts the buffer to its first `size` bytes. Sets SCL_STATUS_OUT_OF_BOUNDS when `size` is
    // beyond the end, or the class cannot be cut; a file may fail with SCL_STATUS_WRITE_FAILED.
    virtual void truncate(std::uint64_t /*size*/, Scl_status& status) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
    }

    // The whole content if it is in memory, so that readers need no copy; else an empty span. Valid
    // until the buffer is written to or destroyed.
    [[nodiscard]] virtual std::span<const std::byte> contents() const { return {}; }
};

} // namespace scl

#pragma GCC visibility pop
