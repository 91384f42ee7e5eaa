#include "tla/data_set_generator.hpp"

#include "records/formatter_types.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/scl_checksum_buffer.hpp"
#include "scl/scl_string.hpp"
#include "tla/data_set_layout.hpp"
#include "tla/key_table_builder.hpp"
#include "tla/record_scanner.hpp"

#include <unordered_set>

namespace tla {

namespace {

bool names_are_unique(std::span<const Field_descriptor> schema) {
    std::unordered_set<std::u16string_view> names;
    for (const Field_descriptor& field : schema) {
        if (!names.insert(field.name).second) return false;
    }
    return true;
}

std::string field_list(std::span<const Field_descriptor> schema) {
    std::string list;
    for (const Field_descriptor& field : schema) {
        scl::scl_string_append(list, field.name);
        list += FIELD_NAME_END;
        list += formatter_name_from_type_id(field.type);
        list += NAME_END;
    }
    list += FIELD_LIST_END;
    return list;
}

// Returns the header end, which is where the records begin. The checksum follows last.
std::uint64_t write_header(std::size_t key_count, std::span<const Field_descriptor> schema,
                           std::uint64_t records_size, std::uint32_t record_count,
                           scl::Scl_ostream& out, scl::Scl_status& status) {
    const std::string list = field_list(schema);
    const std::uint64_t header_end = aligned(FIELD_LIST_OFFSET + list.size());
    const std::uint64_t no_checksum_yet = 0;
    const std::uint64_t key_table_offset = header_end + records_size;
    out.write(DATA_SET_MAGIC, status);
    out.write_le(no_checksum_yet, status);
    out.write_le(key_table_offset, status);
    out.write_le(DATA_SET_VERSION, status);
    out.write_le(static_cast<std::uint16_t>(key_count), status);
    out.write_le(record_count, status);
    out.write(list, status);
    pad_to_eight(out, status);
    return header_end;
}

void copy_records(scl::Scl_buffered_istream& records, scl::Scl_ostream& out,
                  scl::Scl_status& status) {
    const std::uint64_t size = records.size(status);
    while (records.tell() != size && !status.has_failed()) {
        const std::span<const std::byte> window = records.window(status);
        out.write(window.size(), window.data(), status);
        records.skip(window.size());
        if (window.empty() && !status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
    }
}

void write_file(std::span<const std::u16string> key_names, std::span<const Field_descriptor> schema,
                scl::Scl_buffered_istream& stream, const scl::Scl_buffer& records,
                scl::Scl_ostream& out, scl::Scl_status& status) {
    const std::uint32_t record_count = count_records(schema.size(), stream, status);
    if (status.has_failed()) return;
    const std::uint64_t header_end =
        write_header(key_names.size(), schema, stream.size(status), record_count, out, status);
    stream.set_position(0);
    copy_records(stream, out, status);
    Key_table_builder tables(schema, records, stream, record_count, header_end);
    for (const std::u16string& name : key_names) {
        if (status.has_failed()) return;
        tables.write_key_table(name, out, status);
    }
}

} // namespace

void write_data_set_file(std::span<const std::u16string> key_names,
                         std::span<const Field_descriptor> schema, const scl::Scl_buffer& records,
                         scl::Scl_buffer& output, scl::Scl_status& status) {
    if (!names_are_unique(schema)) {
        status = TLA_STATUS_FIELD_LIST;
        return;
    }
    scl::Scl_buffered_istream stream(records, false, status, scl::Scl_eol::none);
    scl::Scl_checksum_buffer checked(output, CHECKED_FROM);
    scl::Scl_ostream out(checked, status, scl::Scl_eol::none);
    write_file(key_names, schema, stream, records, out, status);
    out.detach(status);
    if (status.has_failed()) return;
    out.init(output, status, scl::Scl_eol::none);
    out.set_position(CHECKSUM_OFFSET, status);
    out.write_le(checked.checksum().result(false), status);
    out.detach(status);
}

std::uint32_t count_records(std::size_t field_count, scl::Scl_buffered_istream& records,
                            scl::Scl_status& status) {
    if (field_count == 0) return 0;
    Record_scanner scanner(records, field_count);
    std::uint32_t count = 0;
    while (!status.has_failed()) {
        const bool is_there = !scanner.next(status).empty();
        if (is_there && !(status == TLA_STATUS_RECORD_END)) ++count;
    }
    if (status.contains_value(scl::SCL_STATUS_END_OF_DATA)) status.clear();
    return count;
}

} // namespace tla
