#include "tla/write/header_writer.hpp"

#include "tla/format/data_set_layout.hpp"
#include "tla/format/data_set_version.hpp"
#include "tla/format/field_list.hpp"

namespace tla {

Tla_header_writer::Tla_header_writer(std::span<const Field_descriptor> fields)
    : fields_(fields), field_list_(tla_field_list_of(fields)) {}

// Known before anything is written: record offsets in key tables count from the file's start.
std::uint64_t Tla_header_writer::header_end() const {
    return tla_aligned(TLA_FIELD_LIST_OFFSET + field_list_.size());
}

//  0        8          16                 24      26    28        32
// | magic  | checksum | key_table_offset | ver.  | keys | records | field list, zeros
void Tla_header_writer::write(const Tla_header_counts& counts, scl::Scl_ostream& out,
                              scl::Scl_status& status) const {
    // Matches almost no content, so an unfinished file is refused.
    constexpr std::uint64_t NO_CHECKSUM_YET = 0;
    out.write(TLA_DATA_SET_MAGIC, status);
    out.write_le(NO_CHECKSUM_YET, status);
    out.write_le(header_end() + counts.records_size, status);
    out.write_le(std::uint16_t{TLA_LATEST_VERSION.number}, status);
    out.write_le(counts.keys, status);
    out.write_le(counts.records, status);
    out.write(field_list_, status);
    tla_pad_to_eight(out, status);
}

void tla_pad_to_eight(scl::Scl_ostream& out, scl::Scl_status& status) {
    constexpr std::uint8_t ZERO = 0;
    // At most seven bytes, once a key: no need to write them in one go.
    while (out.tell() % TLA_ALIGNMENT != 0 && !status.has_failed()) {
        out.write_le(ZERO, status);
    }
}

} // namespace tla
