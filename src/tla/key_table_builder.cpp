#include "tla/key_table_builder.hpp"

#include "records/tla_status_codes.hpp"
#include "scl/scl_crc64.hpp"
#include "scl/scl_string.hpp"
#include "tla/data_set_layout.hpp"
#include "tla/key_table_writer.hpp"
#include "tla/pair_sorter.hpp"
#include "tla/record_scanner.hpp"

#include <algorithm>

namespace tla {

void pad_to_eight(scl::Scl_ostream& out, scl::Scl_status& status) {
    constexpr std::uint8_t ZERO = 0;
    while (out.tell() % ALIGNMENT != 0 && !status.has_failed()) {
        out.write_le(ZERO, status);
    }
}

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
    name += NAME_END;
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
    Pair_sorter sorter(record_count_);
    collect_pairs(key_field, tagger, sorter, local);
    status.push_top(local);
    if (status.has_failed()) return;
    Record_comparer comparer(records_, schema_.size(), status);
    Key_table_writer writer(comparer, tagger, header_end_, out, status);
    sorter.drain(writer);
}

void Key_table_builder::collect_pairs(std::size_t key_field, const Offset_tagger& tagger,
                                      Pair_sorter& sorter, scl::Scl_status& status) {
    stream_.set_position(0);
    Record_scanner scanner(stream_, schema_.size());
    for (std::uint32_t i = 0; i < record_count_; ++i) {
        const std::uint64_t offset = header_end_ + stream_.tell();
        const std::span<const std::byte> record = scanner.next(status);
        if (status.has_failed()) return;
        const std::span<const std::byte> values = field_values(record, key_field);
        sorter.add(
            {scl::Scl_crc64::calculate(values.data(), values.size(), scl::Scl_crc64::INITIAL),
             tagger.tagged(offset, record_fingerprint(record))});
    }
}

} // namespace tla
