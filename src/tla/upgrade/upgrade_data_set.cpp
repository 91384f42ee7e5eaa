#include "tla/upgrade/upgrade_data_set.hpp"

#include "records/input/tla_field_copies.hpp"
#include "records/input/tla_record_processor.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_version.hpp"
#include "tla/format/field_list.hpp"
#include "tla/read/entries/read_budget.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"
#include "tla/write/data_set_generator.hpp"
#include "tla/write/header_writer.hpp"
#include "tla/write/scratch_file.hpp"

#include <algorithm>

namespace tla {

namespace {

// With any version: what an upgrade reads is never current.
void load_old_file(std::u16string_view path, Tla_data_set_connector_file& old_file,
                   scl::Scl_status& status) {
    old_file.set_parameter("DataFileName", path, status);
    if (!status.has_failed()) old_file.open(status);
    if (!status.has_failed()) old_file.load(status, true);
}

// The texts of a record, as the fields of a line. There are none in a file of a version below the
// latest that nobody knows: it is read like the latest.
void gather_texts(const Tla_data_set_entry_file& entry, const std::vector<Field_descriptor>& fields,
                  std::vector<std::string_view>& stored, Tla_field_copies& texts,
                  scl::Scl_status& status) {
    if (!entry.texts(stored)) {
        status.assign(TLA_STATUS_NO_TEXT, scl::Scl_wstring_status_arg(fields.front().name));
        return;
    }
    texts.clear();
    for (const std::string_view text : stored) {
        texts.add(text);
    }
}

// In the order of their offsets: the new file keeps the order of the old one, and the old one is
// read from front to back.
Tla_wrapped_records convert_records(std::u16string_view path, Tla_data_set_connector_file& old_file,
                                    scl::Scl_ostream& out, scl::Scl_status& status) {
    const std::vector<Field_descriptor>& fields = old_file.field_descriptors();
    // Those in the first key table, with doubled ones: what that does not lead to is not taken
    // over.
    std::vector<std::int64_t> offsets = old_file.record_offsets(status);
    std::ranges::sort(offsets);
    Tla_read_budget budget(old_file.file_size(), path);
    Tla_record_processor processor(fields, {}, nullptr);
    std::vector<std::string_view> stored;
    Tla_field_copies texts;
    for (const std::int64_t offset : offsets) {
        if (status.has_failed()) break;
        const auto entry = old_file.read_entry(offset, status);
        if (entry == nullptr) break;
        gather_texts(*entry, fields, stored, texts, status);
        // A crafted table may lead to one long record a million times.
        budget.take(entry->record_size(), status);
        if (status.has_failed()) break;
        processor.process({texts.fields()}, out, status);
    }
    return processor.wrapped_records();
}

// Making a key table takes a pass over all records, and a crafted file may claim thousands of keys
// for a few long records. Token values are at most nine times as long as their texts, so a file of
// up to a hundred keys always passes.
void check_work(const Tla_data_set_connector_file& old_file, std::uint64_t records_size,
                std::u16string_view path, scl::Scl_status& status) {
    constexpr std::uint64_t MOST_PASSES = 1024; // over as many bytes as the old file has
    const std::uint64_t pass = old_file.data_start() + records_size;
    if (old_file.key_count() * pass <= MOST_PASSES * old_file.file_size()) return;
    status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(path));
}

} // namespace

void upgrade_data_set(std::string_view input_path, scl::Scl_buffer& output,
                      scl::Scl_status& status) {
    std::u16string path;
    scl::scl_string_append(path, input_path);
    Tla_data_set_connector_file old_file;
    load_old_file(path, old_file, status);
    // A current file is no fault: nothing is done, and the output stays empty.
    if (status.has_failed() || old_file.version() >= TLA_LATEST_VERSION.number) return;
    // A new file may not have such names. Refused before the records are converted, which takes
    // memory for each field.
    if (!tla_names_are_unique(old_file.field_descriptors())) {
        status = TLA_STATUS_FIELD_LIST;
        return;
    }
    scl::Scl_file_buffer records;
    tla_open_scratch_file(records, status);
    if (status.has_failed()) return;
    scl::Scl_ostream out(records);
    const Tla_wrapped_records wrapped = convert_records(path, old_file, out, status);
    out.detach(status);
    if (!status.has_failed()) check_work(old_file, records.size(false, status), path, status);
    if (status.has_failed()) return;
    const Tla_header_writer header(old_file.field_descriptors());
    const std::uint64_t count =
        write_data_set_file(old_file.key_names(), header, records, nullptr, output, status);
    if (status.ok()) tla_warn_of_wrapped_records(wrapped, status);
    // Fewer than the old header claims when the first key table is short, or when new records
    // cannot be told apart, as in a build.
    if (status.ok()) tla_warn_of_lost_records(count, old_file.record_count(), status);
}

} // namespace tla
