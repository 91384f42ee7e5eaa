#include "tla/format/data_set_header.hpp"

#include "records/tla_status_codes.hpp"
#include "scl/io/scl_buffered_istream.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/format/field_list.hpp"

namespace tla {

namespace {

// First of all: of a file that is something else, every number would be chance.
void check_magic(scl::Scl_buffered_istream& in, std::u16string_view file_name,
                 scl::Scl_status& status) {
    std::array<char, TLA_DATA_SET_MAGIC.size()> magic{};
    in.read(magic.size(), magic.data(), status);
    if (status.has_failed() || std::string_view(magic.data(), magic.size()) == TLA_DATA_SET_MAGIC) {
        return;
    }
    status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(file_name));
}

void read_version(scl::Scl_buffered_istream& in, std::u16string_view file_name,
                  bool accept_any_version, Tla_data_set_header& header, scl::Scl_status& status) {
    in.read(header.raw_version.size(), header.raw_version.data(), status);
    const bool fits = accept_any_version || header.version() == TLA_DATA_SET_VERSION;
    if (status.has_failed() || fits) return;
    status.push(TLA_STATUS_VERSION, scl::Scl_wstring_status_arg(file_name));
}

// The version comes before the counts: what another version's counts mean nobody knows.
void read_fixed_header(scl::Scl_buffered_istream& in, std::u16string_view file_name,
                       bool accept_any_version, Tla_data_set_header& header,
                       scl::Scl_status& status) {
    check_magic(in, file_name, status);
    if (status.has_failed()) return;
    in.read_le(header.stored_checksum, status);
    in.read_le(header.index_offset, status);
    if (status.has_failed()) return;
    read_version(in, file_name, accept_any_version, header, status);
    if (status.has_failed()) return;
    in.read_le(header.key_count, status);
    in.read_le(header.record_count, status);
}

// A file that ends inside its header is no data set file, whatever else may be wrong with it.
void replace_end_of_data(std::u16string_view file_name, scl::Scl_status& status) {
    const bool ended =
        status == scl::SCL_STATUS_END_OF_DATA || status == scl::SCL_STATUS_OUT_OF_BOUNDS;
    if (ended) status.assign(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(file_name));
}

} // namespace

void tla_read_header(const scl::Scl_buffer& file, std::u16string_view file_name,
                     bool accept_any_version, Tla_data_set_header& header,
                     scl::Scl_status& status) {
    scl::Scl_buffered_istream in(file, status);
    read_fixed_header(in, file_name, accept_any_version, header, status);
    if (!status.has_failed()) read_field_list(in, header.fields, status);
    if (!status.has_failed()) header.data_start = tla_aligned(in.tell());
    replace_end_of_data(file_name, status);
}

// Known before a record is made, so that records can be noted with their places in the file.
std::uint64_t tla_header_end(std::span<const Field_descriptor> fields) {
    return tla_aligned(TLA_FIELD_LIST_OFFSET + field_list_of(fields).size());
}

std::uint64_t tla_write_header(std::span<const Field_descriptor> fields,
                               const Tla_header_counts& counts, scl::Scl_ostream& out,
                               scl::Scl_status& status) {
    const std::uint64_t header_end = tla_header_end(fields);
    const std::uint64_t no_checksum_yet = 0; // right for next to no file: a part of one is refused
    out.write(TLA_DATA_SET_MAGIC, status);
    out.write_le(no_checksum_yet, status);
    out.write_le(header_end + counts.records_size, status); // where the key tables begin
    out.write_le(TLA_DATA_SET_VERSION, status);
    out.write_le(counts.keys, status);
    out.write_le(counts.records, status);
    out.write(field_list_of(fields), status);
    tla_pad_to_eight(out, status);
    return header_end;
}

} // namespace tla
