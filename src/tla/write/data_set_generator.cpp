#include "tla/write/data_set_generator.hpp"

#include "records/values/tla_record_scanner.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/crc/scl_checksum_buffer.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/format/field_list.hpp"
#include "tla/write/header_writer.hpp"
#include "tla/write/key_table.hpp"
#include "tla/write/record_collector.hpp"
#include "tla/write/record_file.hpp"

#include <algorithm>

namespace tla {

namespace {

// In the order in which their tables are written.
using Key_names = std::span<const std::u16string>;
using Schema = std::span<const Field_descriptor>;

// As they are: records were put into their final form when they were made, and they go into the
// file in the order of the input, so that equal inputs give equal files.
void copy_records(const scl::Scl_buffer& records, scl::Scl_ostream& out, scl::Scl_status& status) {
    scl::Scl_buffered_istream in(records, status);
    const std::uint64_t size = in.size(status);
    while (in.tell() != size && !status.has_failed()) {
        const std::span<const std::byte> window = in.window(status);
        out.write(window.size(), window.data(), status);
        in.skip(window.size());
    }
}

// The pairs are read in a status of their own: only its last word is passed on.
void fill(Key_pairs& pairs, std::size_t key_field, const Recorded& recorded,
          scl::Scl_status& status) {
    scl::Scl_status local;
    read_key_pairs(key_field, recorded, pairs, local);
    status.push_top(local);
}

// The name is written even when no field has it: that is where the file then ends.
void write_key_table(std::u16string_view key_name, Schema schema, Key_pairs& pairs, bool are_known,
                     const Recorded& recorded, scl::Scl_ostream& out, scl::Scl_status& status) {
    write_key_name(key_name, out, status);
    if (status.has_failed()) return;
    const auto field = std::ranges::find(schema, key_name, &Field_descriptor::name);
    if (field == schema.end()) {
        return status.assign(TLA_STATUS_KEY_NAME, scl::Scl_wstring_status_arg(key_name));
    }
    const auto key_field = static_cast<std::size_t>(field - schema.begin());
    if (!are_known) fill(pairs, key_field, recorded, status);
    if (!status.has_failed()) write_key_pairs(pairs, recorded, out, status);
}

// Without `made`, as in an upgrade, nothing was counted on the way.
bool knows_all(const Records_made* made) {
    return made != nullptr && made->collector.knows_all();
}

// What was counted while records were made is right where each could be told from its bytes; else
// the file is read as a reader would, and only what that finds counts.
std::uint64_t count_all(std::size_t field_count, const scl::Scl_buffer& records,
                        const Records_made* made, scl::Scl_status& status) {
    if (knows_all(made)) return made->collector.record_count();
    scl::Scl_buffered_istream in(records, status);
    return count_records(field_count, in, status);
}

// What makes a file impossible, looked for before anything is written. A count that the header
// cannot hold would stand there as a wrapped number.
std::uint64_t count_checked(Key_names key_names, Schema schema, const scl::Scl_buffer& records,
                            const Records_made* made, scl::Scl_status& status) {
    if (!tla_names_are_unique(schema)) {
        status = TLA_STATUS_FIELD_LIST;
        return 0;
    }
    const std::uint64_t count = count_all(schema.size(), records, made, status);
    if (status.has_failed()) return 0;
    // The header has 16 bits for keys and 32 for records.
    if (!Tla_header_counts::can_hold(key_names.size(), count)) status = TLA_STATUS_TOO_MANY_PAIRS;
    return count;
}

// The records may stand in the output already; the file is then written on behind them.
void write_records(const scl::Scl_buffer& records, const Records_made* made,
                   scl::Scl_checksum_buffer& checked, scl::Scl_ostream& out,
                   scl::Scl_status& status) {
    if (made == nullptr || !made->file.is_in_output()) return copy_records(records, out, status);
    out.flush(status); // the header, so that checksums are added in the order of the file
    const std::uint64_t size = records.size(false, status);
    checked.append_written(size, made->file.checksum());
    out.set_position(out.tell() + size, status);
}

void write_key_tables(Key_names key_names, Schema schema, const Recorded& recorded,
                      const Records_made* made, scl::Scl_ostream& out, scl::Scl_status& status) {
    bool are_known = knows_all(made); // the pairs of the first key
    Key_pairs read(recorded.count, recorded.header_end + recorded.records.size(false, status));
    Key_pairs& pairs = are_known ? made->collector.pairs() : read;
    for (const std::u16string& name : key_names) {
        if (status.has_failed()) return;
        write_key_table(name, schema, pairs, are_known, recorded, out, status);
        are_known = false;
    }
}

// The checksum covers the header's later half, so all of it must be known before: it comes last.
void write_checksum(const scl::Scl_crc64& checksum, scl::Scl_buffer& output,
                    scl::Scl_status& status) {
    scl::Scl_ostream out(output);
    out.set_position(TLA_CHECKSUM_OFFSET, status);
    out.write_le(checksum.result(false), status);
    out.detach(status);
}

} // namespace

// The order of the file, front to back: one pass of writing, and the checksum grows with it. Only
// the eight bytes of the checksum are written a second time.
std::uint64_t write_data_set_file(Key_names key_names, const Tla_header_writer& header,
                                  const scl::Scl_buffer& records, const Records_made* made,
                                  scl::Scl_buffer& output, scl::Scl_status& status) {
    const Schema schema = header.fields();
    const std::uint64_t count = count_checked(key_names, schema, records, made, status);
    if (status.has_failed()) {
        if (made != nullptr) made->file.empty_output();
        return 0;
    }
    scl::Scl_checksum_buffer checked(output, TLA_CHECKED_FROM);
    scl::Scl_ostream out(checked);
    const Tla_header_counts counts{static_cast<std::uint16_t>(key_names.size()),
                                   static_cast<std::uint32_t>(count), records.size(false, status)};
    header.write(counts, out, status);
    write_records(records, made, checked, out, status);
    write_key_tables(key_names, schema, {records, schema.size(), count, header.header_end()}, made,
                     out, status);
    out.detach(status);
    if (!status.has_failed()) write_checksum(checked.checksum(), output, status);
    return count;
}

void tla_warn_of_wrapped_records(const Tla_wrapped_records& wrapped, scl::Scl_status& status) {
    if (wrapped.count == 0) return;
    const std::string numbers =
        std::to_string(wrapped.count) + ", the first is " + std::to_string(wrapped.first);
    status.push(TLA_STATUS_COUNT_WRAPPED, scl::Scl_wstring_status_arg(std::string_view(numbers)));
}

void tla_warn_of_lost_records(std::uint64_t readable, std::uint64_t taken,
                              scl::Scl_status& status) {
    if (readable == taken) return;
    const std::string numbers = std::to_string(readable) + " of " + std::to_string(taken);
    status.push(TLA_STATUS_RECORDS_LOST, scl::Scl_wstring_status_arg(std::string_view(numbers)));
}

std::uint64_t count_records(std::size_t field_count, scl::Scl_buffered_istream& records,
                            scl::Scl_status& status) {
    if (field_count == 0) return 0; // records of no fields could not be told from one another
    Tla_record_scanner scanner(records, field_count);
    std::uint64_t count = 0;
    while (!status.has_failed()) {
        if (!scanner.next(status).empty()) ++count;
    }
    // How counting ends when all is well.
    if (status.contains_value(scl::SCL_STATUS_END_OF_DATA)) status.clear();
    return count;
}

} // namespace tla
