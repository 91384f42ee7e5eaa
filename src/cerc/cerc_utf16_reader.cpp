#include "cerc/cerc_utf16_reader.hpp"

#include <utility>

namespace cerc {

// The stream comes last: should making it throw, the reader stays detached.
void Cerc_utf16_reader::attach_stream(const scl::Scl_buffer& buffer, scl::Scl_status& status) {
    auto stream = std::make_unique<scl::Scl_buffered_istream>(buffer, status);
    size_ = stream->size(status);
    status_ = &status;
    stream_ = std::move(stream);
}

// With the window used up but for half a unit: loads the next one. False when no unit is left.
bool Cerc_utf16_reader::load_unit() {
    if (!stream_ || status_->has_failed()) return false;
    const std::uint64_t position = tell();
    // The stream does not know how far its window was read here. Half a unit left at the end of it
    // is loaded again, together with its other half.
    stream_->set_position(position);
    set_window(stream_->window(UNIT_BYTES, *status_), position);
    return has_unit() && !status_->has_failed();
}

char32_t Cerc_utf16_reader::read_beyond_window() {
    return load_unit() ? read() : END_OF_DATA;
}

// The two halves of a pair may lie on both sides of the window's end.
char32_t Cerc_utf16_reader::join_with_trail(char16_t lead) {
    if (!has_unit() && !load_unit()) return lead;
    if (!scl::scl_is_trail(unit_here())) return lead;
    return 0x10000 + ((lead & 0x3FFU) << 10U) + (take_unit() & 0x3FFU);
}

// An empty window at the new position: the next read loads one. What the old one held is read again
// should the position return, which is rare and near.
void Cerc_utf16_reader::seek_beyond_window(std::uint64_t offset, scl::Scl_status& status) {
    if (offset > size_) {
        status.push(scl::SCL_STATUS_END_OF_DATA);
    } else {
        set_window({}, offset);
    }
}

} // namespace cerc
