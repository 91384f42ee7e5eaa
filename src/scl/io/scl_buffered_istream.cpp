#include "scl/io/scl_buffered_istream.hpp"

#include <algorithm>
#include <cstring>

namespace scl {

void Scl_buffered_istream::init(const Scl_buffer& buffer, bool /*at_end*/, Scl_status& status,
                                Scl_eol /*eol*/) {
    status_ = &status;
    attach(buffer, status);
}

// Reads on behind the bytes at hand, which move to the storage's front: they did arrive, whatever
// comes of the read.
void Scl_buffered_istream::refill(std::size_t wanted, Scl_status& status) {
    const std::uint64_t position = tell();
    // Beyond the end there is nothing to read, and the buffer would call it out of bounds.
    if (buffer() == nullptr || position >= size(status)) return;
    const std::span<const std::byte> contents = buffer()->contents();
    // All of it at once: this is the last refill unless the position goes back.
    if (!contents.empty()) {
        set_window(contents, 0); // whole, so that no later position leads out of it
        set_position(position);
        return;
    }
    if (storage_ == nullptr) storage_ = std::make_unique_for_overwrite<std::byte[]>(WINDOW_BYTES);
    const std::span<std::byte> storage(storage_.get(), std::max(wanted, read_ahead_));
    const std::size_t kept = at_hand();
    if (kept != 0) std::memmove(storage.data(), bytes_at_hand().data(), kept);
    const std::size_t more = buffer()->read_at(position + kept, storage.subspan(kept), status);
    set_window(storage.first(kept + more), position);
}

std::size_t Scl_buffered_istream::read_beyond_window(std::span<std::byte> bytes,
                                                     Scl_status& status) {
    if (bytes.size() >= WINDOW_BYTES) { // no use in copying so many twice
        const std::size_t count = buffer()->read_at(tell(), bytes, status);
        set_window({}, tell() + count);
        return count;
    }
    std::size_t done = 0;
    // After a failure as well: the window then gives what arrived before it, and is empty next
    // time.
    while (done < bytes.size() && !window(status).empty()) {
        const std::size_t count = std::min(bytes.size() - done, at_hand());
        std::copy_n(take(count), count, bytes.begin() + static_cast<std::ptrdiff_t>(done));
        done += count;
    }
    return done;
}

unsigned char Scl_buffered_istream::read_char_beyond_window() {
    assert(status_ != nullptr); // never attached: nobody could be told
    std::byte next{};
    read(1, &next, *status_);
    return std::to_integer<unsigned char>(next);
}

} // namespace scl
