#include "tla/key_table_builder.hpp"

#include "records/tla_status_codes.hpp"
#include "scl/scl_crc64.hpp"
#include "scl/scl_string.hpp"
#include "tla/data_set_layout.hpp"
#include "tla/key_table_writer.hpp"
#include "tla/pair_sorter.hpp"

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
      scanner_(stream),
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
    scanner_.stream().set_position(0);
    for (std::uint32_t i = 0; i < record_count_ && !status.has_failed(); ++i) {
        const std::uint64_t offset = header_end_ + scanner_.stream().tell();
        std::uint64_t key_hash = 0;
        std::uint64_t fingerprint = 0;
        hash_record(key_field, key_hash, fingerprint, status);
        sorter.add({key_hash, tagger.tagged(offset, fingerprint)});
    }
}

void Key_table_builder::hash_record(std::size_t key_field, std::uint64_t& key_hash,
                                    std::uint64_t& fingerprint, scl::Scl_status& status) {
    Record_fingerprint print;
    for (std::size_t field = 0; field < schema_.size() && !status.has_failed(); ++field) {
        const std::uint16_t count = scanner_.read_count(status);
        const std::span<const std::byte> values = scanner_.read_values(count, status);
        print.add(count);
        print.add(values);
        if (field == key_field) {
            key_hash =
                scl::Scl_crc64::calculate(values.data(), values.size(), scl::Scl_crc64::INITIAL);
        }
    }
    fingerprint = print.value();
    std::uint8_t end = 0;
    scanner_.read_end(end, status);
    if (end != 0 && !status.has_failed()) status.push(TLA_STATUS_RECORD_END);
}

} // namespace tla
