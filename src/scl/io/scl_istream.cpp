#include "scl/io/scl_istream.hpp"

#include <algorithm>
#include <cstring>

namespace scl {

// The size is asked for once: it bounds every read and seek, and a file's does not change while it
// is read.
void Scl_istream::attach(const Scl_buffer& buffer, Scl_status& status) {
    buffer_ = &buffer;
    size_ = buffer.size(false, status);
    set_window({}, 0);
}

// With a size of 0, no read reaches the buffer, which may be destroyed by now.
void Scl_istream::detach() {
    buffer_ = nullptr;
    size_ = 0;
    set_window({}, 0);
}

std::size_t Scl_istream::read(std::size_t count, void* destination, Scl_status& status) {
    if (count == 0) return 0;
    const std::span<std::byte> bytes(static_cast<std::byte*>(destination), count);
    const std::size_t from_window = std::min(count, buffered_size());
    // An empty window has no address, which memcpy may not be given even for nothing.
    if (from_window != 0) std::memcpy(bytes.data(), take(from_window), from_window);
    std::size_t done = from_window;
    // Beyond the end a stream reports the end of the data; the buffer would report its bounds.
    if (done < count && tell() < size_) done += read_beyond_window(bytes.subspan(done), status);
    // Not after a read failure: the data may go on, and the failure is the reason.
    if (done < count && !status.has_failed()) status.push(SCL_STATUS_END_OF_DATA);
    return done;
}

// Lookups step back and forth over a few bytes, so a position inside the window keeps the window.
// Any other position empties it; the next read fills it.
void Scl_istream::set_position(std::uint64_t position) {
    const auto length = static_cast<std::uint64_t>(window_end_ - window_begin_);
    const std::uint64_t begin = window_end_offset_ - length;
    if (position >= begin && position <= window_end_offset_) {
        window_at_ = window_begin_ + (position - begin);
    } else {
        set_window({}, position);
    }
}

void Scl_istream::seek(Scl_seek /*relative*/, std::int64_t offset, Scl_status& status) {
    // Unsigned arithmetic, which may wrap: a step too far then lands on the wrong side of the
    // position. For example 4 - 11 is a huge number.
    const std::uint64_t base = tell();
    const std::uint64_t target = base + static_cast<std::uint64_t>(offset);
    if (offset < 0 && target > base) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
    } else if (target > size_ || (offset > 0 && target < base)) {
        status.push(SCL_STATUS_END_OF_DATA);
    } else {
        set_position(target);
    }
}

std::uint64_t Scl_istream::size(Scl_status& /*status*/) const {
    return size_;
}

void Scl_istream::set_window(std::span<const std::byte> bytes, std::uint64_t offset) {
    window_begin_ = bytes.data();
    window_at_ = bytes.data();
    window_end_ = bytes.data() + bytes.size();
    window_end_offset_ = offset + bytes.size();
}

std::size_t Scl_unbuffered_istream::read_at(std::uint64_t offset, std::size_t count,
                                            void* destination, Scl_status& status) const {
    if (buffer() == nullptr) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return 0;
    }
    return buffer()->read_at(offset, {static_cast<std::byte*>(destination), count}, status);
}

// Without a window, so set_position() only sets the position.
std::size_t Scl_unbuffered_istream::read_beyond_window(std::span<std::byte> bytes,
                                                       Scl_status& status) {
    const std::size_t count = buffer()->read_at(tell(), bytes, status);
    set_position(tell() + count);
    return count;
}

} // namespace scl
