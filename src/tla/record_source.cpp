#include "tla/record_source.hpp"

namespace tla {

namespace {

constexpr std::size_t FAR_READ_AHEAD_BYTES = 1024;

} // namespace

Record_source::Record_source(const scl::Scl_buffer& file)
    : stream_(file, false, attach_status_, scl::Scl_eol::none) {}

scl::Scl_buffered_istream& Record_source::stream_at(std::uint64_t offset) {
    const bool goes_on = stream_.tell() == offset;
    stream_.limit_read_ahead(goes_on ? scl::Scl_buffered_istream::WINDOW_BYTES
                                     : FAR_READ_AHEAD_BYTES);
    stream_.set_position(offset);
    return stream_;
}

} // namespace tla
