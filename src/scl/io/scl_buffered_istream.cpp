#include "scl/io/scl_buffered_istream.hpp"

#include <algorithm>
#include <cstring>

namespace scl {

void Scl_buffered_istream::init(const Scl_buffer& buffer, bool /*at_end*/, Scl_status& status,
                                Scl_eol /*eol*/) {
    status_ = &status;
    attach(buffer, status);
}

// Moves the bytes of the window that are not used yet to the front of the storage, and reads on
// behind them. They stay in the window even if the read fails.
void Scl_buffered_istream::refill(std::size_t wanted, Scl_status& status) {
    const std::uint64_t position = tell();
    // At or beyond the end there is nothing to read; the buffer would report an offset out of
    // bounds.
    if (buffer() == nullptr || position >= size(status)) return;
    const std::span<const std::byte> contents = buffer()->contents();
    // In memory: the window becomes the whole content, and this is the only refill.
    if (!contents.empty()) {
        set_window(contents, 0);
        set_position(position);
        return;
    }
    if (storage_ == nullptr) storage_ = std::make_unique_for_overwrite<std::byte[]>(WINDOW_BYTES);
    const std::span<std::byte> storage(storage_.get(), std::max(wanted, read_ahead_));
    const std::size_t kept = buffered_size();
    if (kept != 0) std::memmove(storage.data(), buffered_bytes().data(), kept);
    const std::size_t more = buffer()->read_at(position + kept, storage.subspan(kept), status);
    set_window(storage.first(kept + more), position);
}

std::size_t Scl_buffered_istream::read_beyond_window(std::span<std::byte> bytes,
                                                     Scl_status& status) {
    if (bytes.size() >= WINDOW_BYTES) { // as many as a window: read without the copy
        const std::size_t count = buffer()->read_at(tell(), bytes, status);
        set_window({}, tell() + count);
        return count;
    }
    std::size_t done = 0;
    // Goes on after a failure: the window holds what was read before it, and is empty after that.
    while (done < bytes.size() && !window(status).empty()) {
        const std::size_t count = std::min(bytes.size() - done, buffered_size());
        std::copy_n(take(count), count, bytes.begin() + static_cast<std::ptrdiff_t>(done));
        done += count;
    }
    return done;
}

unsigned char Scl_buffered_istream::read_char_beyond_window() {
    assert(status_ != nullptr); // not attached, or without a status
    std::byte next{};
    read(1, &next, *status_);
    return std::to_integer<unsigned char>(next);
}

} // namespace scl
