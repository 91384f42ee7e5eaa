#include "tla/format/data_set_header.hpp"

#include "records/values/tla_status_codes.hpp"
#include "scl/io/scl_buffered_istream.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/format/field_list.hpp"

namespace tla {

namespace {

// Checked first: in a file of another kind every number would be chance.
void check_magic(scl::Scl_buffered_istream& in, std::u16string_view file_name,
                 scl::Scl_status& status) {
    std::array<char, TLA_DATA_SET_MAGIC.size()> magic{};
    in.read(magic.size(), magic.data(), status);
    if (status.has_failed() || std::string_view(magic.data(), magic.size()) == TLA_DATA_SET_MAGIC) {
        return;
    }
    status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(file_name));
}

// Of the two bytes only the first counts, but both are kept as they were read.
void read_version(scl::Scl_buffered_istream& in, std::u16string_view file_name,
                  bool accept_any_version, Tla_data_set_header& header, scl::Scl_status& status) {
    in.read(header.raw_version.size(), header.raw_version.data(), status);
    const bool fits = accept_any_version || header.version().is_current;
    if (status.has_failed() || fits) return;
    status.push(TLA_STATUS_VERSION, scl::Scl_wstring_status_arg(file_name));
}

// The version is checked before the counts are read: another version may count something else.
void read_fixed_header(scl::Scl_buffered_istream& in, std::u16string_view file_name,
                       bool accept_any_version, Tla_data_set_header& header,
                       scl::Scl_status& status) {
    check_magic(in, file_name, status);
    if (status.has_failed()) return;
    // Kept, not compared: that takes a pass over the file, and only some callers want it.
    in.read_le(header.stored_checksum, status);
    in.read_le(header.key_table_offset, status);
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
    // Counted before the fields are kept, see tla_count_fields().
    if (!status.has_failed()) header.field_count = tla_count_fields(in, status);
    if (!status.has_failed()) header.data_start = tla_aligned(in.tell());
    replace_end_of_data(file_name, status);
}

void tla_read_fields(const scl::Scl_buffer& file, std::u16string_view file_name,
                     const Tla_data_set_header& header, std::vector<Field_descriptor>& fields,
                     scl::Scl_status& status) {
    scl::Scl_buffered_istream in(file, status);
    // The header's fixed part was read before; the list begins at the same offset in every version.
    in.set_position(TLA_FIELD_LIST_OFFSET);
    tla_read_field_list(in, header.field_count, fields, status);
    replace_end_of_data(file_name, status);
}

} // namespace tla
