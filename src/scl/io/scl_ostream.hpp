#pragma once

#include "scl/io/scl_buffer.hpp"
#include "scl/io/scl_endian.hpp"

#include <cassert>
#include <memory>
#include <span>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace scl {

// A buffered writer with a position over a buffer, which must outlive the attachment. A failure is
// reported by the call that passes the bytes on to the buffer, at the latest by flush() or
// detach(): call one of them before relying on what was written. Writing without a buffer attached
// sets SCL_STATUS_OUT_OF_BOUNDS.
//
// Bytes go out in pieces that end at multiples of PIECE_BYTES of the buffer. Large pieces, since a
// system call costs as much as some hundred records; and whole pages, since a file system takes
// them in two thirds of the time.
class Scl_ostream {
    static constexpr std::size_t PIECE_BYTES = std::size_t{256} << 10;
    // Behind a piece that is not full yet there is room for what room() is asked for.
    static constexpr std::size_t STORAGE_BYTES = PIECE_BYTES + PIECE_BYTES / 2;

public:
    // The most that room() can give.
    static constexpr std::size_t MOST_ROOM = STORAGE_BYTES;

    Scl_ostream() = default;
    // Attaches to the buffer, at its front; this does not fail.
    explicit Scl_ostream(Scl_buffer& buffer) { attach(buffer); }
    // With all that can be said of an attachment: bytes go out unchanged in both modes.
    Scl_ostream(Scl_buffer& buffer, Scl_status& status, Scl_eol eol) { init(buffer, status, eol); }
    Scl_ostream(const Scl_ostream&) = delete;
    Scl_ostream& operator=(const Scl_ostream&) = delete;
    ~Scl_ostream() = default; // drops what was not flushed: nobody could be told of a failure

    void init(Scl_buffer& buffer, Scl_status& /*status*/, Scl_eol /*eol*/) { attach(buffer); }
    void detach(Scl_status& status);
    void flush(Scl_status& status);

    void write(std::size_t count, const void* source, Scl_status& status);
    void write(std::string_view bytes, Scl_status& status) {
        write(bytes.size(), bytes.data(), status);
    }
    template <std::integral T>
    void write_le(T value, Scl_status& status) {
        if (std::byte* const room = make_room(sizeof(T), status)) {
            scl_store_le(room, value);
            used_ += sizeof(T);
        }
    }
    template <std::integral T>
    void write_be(T value, Scl_status& status) {
        write_le(scl_byte_swapped(value), status);
    }

    // Memory to write to in place, without a copy: at least `count` bytes, at most PIECE_BYTES / 2.
    // advance() makes them part of the stream. Empty when the stream is not attached. Valid
    // until the next operation.
    [[nodiscard]] std::span<std::byte> room(std::size_t count, Scl_status& status) {
        if (make_room(count, status) == nullptr) return {};
        return {storage_.get() + used_, STORAGE_BYTES - used_};
    }
    void advance(std::size_t count) {
        assert(count <= STORAGE_BYTES - used_);
        used_ += count;
    }

    // In bytes from the start of the buffer. Setting it never fails; writing beyond the buffer's
    // end leaves no gap but sets SCL_STATUS_OUT_OF_BOUNDS.
    [[nodiscard]] std::uint64_t tell() const { return begin_offset_ + used_; }
    void set_position(std::uint64_t position, Scl_status& status);

private:
    void attach(Scl_buffer& buffer);
    // Memory for `count` bytes; null when not attached.
    [[nodiscard]] std::byte* make_room([[maybe_unused]] std::size_t count, Scl_status& status) {
        assert(count <= STORAGE_BYTES - PIECE_BYTES);
        if (used_ >= piece_ && !write_pieces(status)) return nullptr;
        return storage_.get() + used_;
    }
    void begin_at(std::uint64_t offset);
    void write_stored(std::size_t count, Scl_status& status);
    [[nodiscard]] bool write_pieces(Scl_status& status);
    void write_past_storage(std::size_t count, const void* source, Scl_status& status);

    Scl_buffer* buffer_ = nullptr;
    std::unique_ptr<std::byte[]> storage_;
    std::size_t piece_ = 0; // the size of the piece that comes next; 0 when not attached
    std::size_t used_ = 0;
    std::uint64_t begin_offset_ = 0; // where in the buffer the storage begins
};

} // namespace scl

#pragma GCC visibility pop
