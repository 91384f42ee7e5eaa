#include "tla/read/entries/entry_reader.hpp"

#include "records/values/record_layout.hpp"

#include <utility>

namespace tla {

namespace {

// Longer than most records. Reading more would copy bytes that nobody looks at.
constexpr std::size_t FAR_READ_AHEAD_BYTES = 512;

} // namespace

Entry_reader::Entry_reader(std::shared_ptr<const Entry_source> source,
                           const Tla_data_set_header& header)
    : source_(std::move(source)), header_(header), stream_(*source_->file) {}

// The entry shares the source: it answers even when the connector has opened another file since.
std::unique_ptr<Tla_data_set_entry_file> Entry_reader::make(std::int64_t record_offset) const {
    return std::unique_ptr<Tla_data_set_entry_file>(new Tla_data_set_entry_file(
        source_, header_.version().number, header_.data_start, record_offset));
}

std::unique_ptr<Tla_data_set_entry_file> Entry_reader::read(std::int64_t record_offset,
                                                            scl::Scl_status& status) {
    auto entry = make(record_offset);
    go_to(record_offset);
    entry->read_from(stream_, status);
    if (status.has_failed()) entry.reset();
    return entry;
}

std::span<const std::byte> Entry_reader::buffered_record(std::int64_t record_offset,
                                                         scl::Scl_status& status) {
    go_to(record_offset);
    const auto record = tla_whole_record(stream_.window(status), source_->fields->list().size());
    return record.empty() || tla_is_closed(record) ? record : record.first(0);
}

// Records read in file order are likely to go on in file order: then a whole window pays.
void Entry_reader::go_to(std::int64_t record_offset) {
    const auto position = static_cast<std::uint64_t>(record_offset);
    stream_.limit_read_ahead(stream_.tell() == position ? scl::Scl_buffered_istream::WINDOW_BYTES
                                                        : FAR_READ_AHEAD_BYTES);
    stream_.set_position(position);
}

} // namespace tla
