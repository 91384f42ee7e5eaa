#include "cerc/cerc_utf16_reader.hpp"

#include <utility>

namespace cerc {

// Stores the stream last: if making it throws, the reader stays detached.
void Cerc_utf16_reader::attach_stream(const scl::Scl_buffer& buffer, scl::Scl_status& status) {
    auto stream = std::make_unique<scl::Scl_buffered_istream>(buffer, status);
    size_ = stream->size(status);
    status_ = &status;
    stream_ = std::move(stream);
}

// Loads the next window; at most one byte of the old one is left. False when no unit is left.
bool Cerc_utf16_reader::load_unit() {
    if (!stream_ || status_->has_failed()) return false;
    const std::uint64_t position = tell();
    // The reader moves its own pointer over the stream's window, so the stream has to be told the
    // position. A byte left at the end is half a unit and is loaded again with its other half.
    stream_->set_position(position);
    set_window(stream_->window(UNIT_BYTES, *status_), position);
    return has_unit() && !status_->has_failed();
}

char32_t Cerc_utf16_reader::read_beyond_window() {
    return load_unit() ? read() : END_OF_DATA;
}

// The lead surrogate may be the window's last unit, and its trail the first of the next window.
char32_t Cerc_utf16_reader::join_with_trail(char16_t lead) {
    if (!has_unit() && !load_unit()) return lead;
    if (!scl::scl_is_trail(unit_here())) return lead;
    return 0x10000 + ((lead & 0x3FFU) << 10U) + (take_unit() & 0x3FFU);
}

// Sets an empty window at the new position; the next read loads it. Going back reads the bytes
// again, but seeks beyond the window are rare.
void Cerc_utf16_reader::seek_beyond_window(std::uint64_t offset, scl::Scl_status& status) {
    if (offset > size_) {
        status.push(scl::SCL_STATUS_END_OF_DATA);
    } else {
        set_window({}, offset);
    }
}

} // namespace cerc
