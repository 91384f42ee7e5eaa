#include "tla/read/entry_reader.hpp"

#include <new>

namespace tla {

namespace {

// Most records are shorter, and what is copied out of the page cache in vain takes its time, too.
constexpr std::size_t FAR_READ_AHEAD_BYTES = 512;

} // namespace

Entry_reader::Entry_reader(const scl::Scl_buffer& file, const Tla_data_set_header& header)
    : file_(file), header_(header), stream_(file, false, attach_status_, scl::Scl_eol::none) {}

std::unique_ptr<Tla_data_set_entry_file> Entry_reader::read(std::int64_t record_offset,
                                                            scl::Scl_status& status) {
    std::unique_ptr<Tla_data_set_entry_file> entry(new (std::nothrow) Tla_data_set_entry_file(
        header_.fields, header_.version(), header_.data_start, record_offset, file_));
    if (entry == nullptr) return nullptr;
    // Records read one after the other are likely to go on so.
    const bool goes_on = stream_.tell() == static_cast<std::uint64_t>(record_offset);
    stream_.limit_read_ahead(goes_on ? scl::Scl_buffered_istream::WINDOW_BYTES
                                     : FAR_READ_AHEAD_BYTES);
    entry->read_from(stream_, status);
    if (status.has_failed()) entry.reset();
    return entry;
}

} // namespace tla
