#include "tla/read/entry_reader.hpp"

#include <new>

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

std::unique_ptr<Tla_data_set_entry_file> Entry_reader::read(std::int64_t record_offset,
                                                            scl::Scl_status& status) {
    return read_by(&Tla_data_set_entry_file::read, record_offset, status);
}

std::unique_ptr<Tla_data_set_entry_file> Entry_reader::read_stored(std::int64_t record_offset,
                                                                   scl::Scl_status& status) {
    return read_by(&Tla_data_set_entry_file::read_stored, record_offset, status);
}

std::unique_ptr<Tla_data_set_entry_file> Entry_reader::read_by(Read how, std::int64_t record_offset,
                                                               scl::Scl_status& status) {
    std::unique_ptr<Tla_data_set_entry_file> entry(new (std::nothrow) Tla_data_set_entry_file(
        header_.fields, header_.version(), header_.data_start, record_offset, file_));
    if (entry == nullptr) return nullptr;
    ((*entry).*how)(source_, status);
    if (status.has_failed()) entry.reset();
    return entry;
}

} // namespace tla
