#pragma once

#include "scl/io/scl_buffer.hpp"
#include "scl/io/scl_endian.hpp"

namespace scl {

// What the offset of a seek counts from; only steps from the position are needed.
enum class Scl_seek : unsigned { relative = 1 };

// A reader with a position over a buffer, which must outlive the attachment. A read that finds
// fewer bytes than it asks for sets SCL_STATUS_END_OF_DATA, or SCL_STATUS_READ_FAILED when the
// buffer fails; an integer then keeps its value. The data's size is read once, at the attachment.
// Part of the data, the window, is in memory: reading there takes no call.
class Scl_istream {
public:
    Scl_istream(const Scl_istream&) = delete;
    Scl_istream& operator=(const Scl_istream&) = delete;
    virtual ~Scl_istream() = default;

    // Without effect on a stream that is not attached.
    void detach();

    // Reads up to `count` bytes and returns how many there were. Pushes SCL_STATUS_END_OF_DATA or
    // what the buffer's read_at does; on a status that has failed already, nothing.
    std::size_t read(std::size_t count, void* destination, Scl_status& status);

    // Integers of sizeof(T) bytes in either byte order; codes as for read().
    template <std::integral T>
    void read_le(T& value, Scl_status& status) {
        Scl_raw<T> raw;
        if (fetch(raw, status)) value = scl_load_le<T>(raw.data());
    }
    template <std::integral T>
    void read_be(T& value, Scl_status& status) {
        Scl_raw<T> raw;
        if (fetch(raw, status)) value = scl_load_be<T>(raw.data());
    }

    // In bytes from the start of the data.
    [[nodiscard]] std::uint64_t tell() const { return window_end_offset_ - buffered_size(); }
    // Never fails; a read from a position beyond the end does. Costs nothing inside the window.
    void set_position(std::uint64_t position);
    // Steps `offset` bytes from the position. A target beyond the end sets SCL_STATUS_END_OF_DATA,
    // one before the start SCL_STATUS_OUT_OF_BOUNDS; the position then stays.
    void seek(Scl_seek mode, std::int64_t offset, Scl_status& status);

    // Of the data, in bytes; leaves no code. 0 when not attached.
    [[nodiscard]] std::uint64_t size(Scl_status& status) const;

protected:
    Scl_istream() = default;

    // The status is for the buffer's size(), which leaves no code in any kind of buffer here.
    void attach(const Scl_buffer& buffer, Scl_status& status);
    void attach(const Scl_buffer& buffer) {
        Scl_status never_set;
        attach(buffer, never_set);
    }
    [[nodiscard]] const Scl_buffer* buffer() const { return buffer_; }
    [[nodiscard]] std::size_t buffered_size() const {
        return static_cast<std::size_t>(window_end_ - window_at_);
    }

    // Makes the window hold `bytes`, the data from `offset` on, and puts the position at its start.
    void set_window(std::span<const std::byte> bytes, std::uint64_t offset);

    // Called with the window used up and the position before the end: reads on from there, and
    // returns how many bytes there were.
    virtual std::size_t read_beyond_window(std::span<std::byte> bytes, Scl_status& status) = 0;

    // Steps over `count` buffered bytes and returns their start; null when the window has fewer.
    [[nodiscard]] const std::byte* take(std::size_t count) {
        if (buffered_size() < count) return nullptr;
        const std::byte* const start = window_at_;
        window_at_ += count;
        return start;
    }
    [[nodiscard]] std::span<const std::byte> buffered_bytes() const {
        return {window_at_, window_end_};
    }

private:
    template <std::size_t N>
    [[nodiscard]] bool fetch(std::array<std::byte, N>& raw, Scl_status& status) {
        if (const std::byte* const start = take(N)) {
            std::copy_n(start, N, raw.begin());
            return true;
        }
        return read(N, raw.data(), status) == N;
    }

    // The window, and the position in it. Reading moves only window_at_; the position is computed
    // from it and from the offset of the window's end.
    const std::byte* window_begin_ = nullptr;
    const std::byte* window_at_ = nullptr;
    const std::byte* window_end_ = nullptr;
    std::uint64_t window_end_offset_ = 0; // where in the data the window ends
    const Scl_buffer* buffer_ = nullptr;
    std::uint64_t size_ = 0;
};

// Every read goes straight to the buffer; for few, large reads at chosen offsets.
class Scl_unbuffered_istream final : public Scl_istream {
public:
    // Attaches to the buffer, at the data's front.
    explicit Scl_unbuffered_istream(const Scl_buffer& buffer) { attach(buffer); }
    // With all that can be said of an attachment: `at_end` is false, and both modes of line ends
    // hand the bytes through unchanged.
    Scl_unbuffered_istream(const Scl_buffer& buffer, bool /*at_end*/, Scl_status& status,
                           Scl_eol /*eol*/) {
        attach(buffer, status);
    }

    // Reads without moving the position; 0 bytes at the end. Pushes what the buffer's read_at does,
    // and SCL_STATUS_OUT_OF_BOUNDS when not attached.
    std::size_t read_at(std::uint64_t offset, std::size_t count, void* destination,
                        Scl_status& status) const;

protected:
    std::size_t read_beyond_window(std::span<std::byte> bytes, Scl_status& status) override;
};

} // namespace scl
