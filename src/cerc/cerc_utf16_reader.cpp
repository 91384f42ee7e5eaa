#include "cerc/cerc_utf16_reader.hpp"

namespace cerc {

void Cerc_utf16_reader::attach_stream(const scl::Scl_buffer& buffer, scl::Scl_status& status) {
    status_ = &status;
    stream_ =
        std::make_unique<scl::Scl_buffered_istream>(buffer, false, status, scl::Scl_eol::none);
    size_ = stream_->size(status);
    set_window({}, stream_->tell());
}

void Cerc_utf16_reader::detach() {
    stream_.reset();
    size_ = 0;
    status_ = nullptr;
    set_window({}, 0);
}

// With the window used up but for half a unit: loads the next one. False when no unit is left.
bool Cerc_utf16_reader::load_unit() {
    if (!stream_ || status_->has_failed()) return false;
    const std::uint64_t position = tell();
    stream_->set_position(position);
    set_window(stream_->window(UNIT_BYTES, *status_), position);
    return has_unit() && !status_->has_failed();
}

char32_t Cerc_utf16_reader::read_beyond_window() {
    return load_unit() ? read() : END_OF_DATA;
}

char32_t Cerc_utf16_reader::join_with_trail(char16_t lead) {
    if (!has_unit() && !load_unit()) return lead;
    if (!scl::impl::scl_is_trail(unit_here())) return lead;
    return 0x10000 + ((lead & 0x3FFU) << 10U) + (take_unit() & 0x3FFU);
}

void Cerc_utf16_reader::seek_beyond_window(std::uint64_t offset, scl::Scl_status& status) {
    if (offset > size_) {
        status.push(scl::SCL_STATUS_END_OF_DATA);
    } else {
        set_window({}, offset);
    }
}

} // namespace cerc
