#include "tla/build/key_table.hpp"

#include "records/record_layout.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/build/key_table_writer.hpp"
#include "tla/build/record_scanner.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/sort/pair_sorter.hpp"

#include <algorithm>

namespace tla {

Key_table_builder::Key_table_builder(std::span<const Field_descriptor> schema,
                                     const scl::Scl_buffer& records,
                                     scl::Scl_buffered_istream& stream, std::uint32_t record_count,
                                     std::uint64_t header_end)
    : schema_(schema),
      records_(records),
      stream_(stream),
      record_count_(record_count),
      header_end_(header_end) {}

void Key_table_builder::write_key_table(std::u16string_view key_name, scl::Scl_ostream& out,
                                        scl::Scl_status& status) {
    std::string name;
    scl::scl_string_append(name, key_name);
    name += TLA_NAME_END;
    out.write(name, status);
    pad_to_eight(out, status);
    if (status.has_failed()) return;
    const auto field = std::ranges::find(schema_, key_name, &Field_descriptor::name);
    if (field == schema_.end()) {
        status.assign(TLA_STATUS_KEY_NAME, scl::Scl_wstring_status_arg(key_name));
        return;
    }
    write_pairs(static_cast<std::size_t>(field - schema_.begin()), out, status);
}

void Key_table_builder::write_pairs(std::size_t key_field, scl::Scl_ostream& out,
                                    scl::Scl_status& status) {
    scl::Scl_status local;
    const Offset_tagger tagger(header_end_ + records_.size(false, local));
    Tla_pair_sorter sorter(record_count_);
    collect_pairs(key_field, tagger, sorter, local);
    status.push_top(local);
    if (status.has_failed()) return;
    Record_comparer comparer(records_, schema_.size(), status);
    Key_table_writer writer(comparer, tagger, header_end_, out, status);
    sorter.drain(writer);
}

void Key_table_builder::collect_pairs(std::size_t key_field, const Offset_tagger& tagger,
                                      Tla_pair_sorter& sorter, scl::Scl_status& status) {
    stream_.set_position(0);
    Record_scanner scanner(stream_, schema_.size());
    for (std::uint32_t i = 0; i < record_count_; ++i) {
        const std::uint64_t offset = header_end_ + stream_.tell();
        const std::span<const std::byte> record = scanner.next(status);
        if (status.has_failed()) return;
        const std::span<const std::byte> values = tla_field_values(record, key_field);
        sorter.add(
            {scl::Scl_crc64::calculate(values.data(), values.size(), scl::Scl_crc64::INITIAL),
             tagger.tagged(offset, record_fingerprint(record))});
    }
}

} // namespace tla
