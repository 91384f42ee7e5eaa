#include "tla/build/data_set_generator.hpp"

#include "records/tla_formatters.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/crc/scl_checksum_buffer.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/build/key_table.hpp"
#include "tla/build/record_scanner.hpp"
#include "tla/format/data_set_header.hpp"
#include "tla/format/data_set_layout.hpp"

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
    const std::uint64_t header_end = write_header(
        schema, {static_cast<std::uint16_t>(key_names.size()), record_count, stream.size(status)},
        out, status);
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
    scl::Scl_checksum_buffer checked(output, TLA_CHECKED_FROM);
    scl::Scl_ostream out(checked, status, scl::Scl_eol::none);
    write_file(key_names, schema, stream, records, out, status);
    out.detach(status);
    if (status.has_failed()) return;
    out.init(output, status, scl::Scl_eol::none);
    out.set_position(TLA_CHECKSUM_OFFSET, status);
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
