#pragma once

#include "records/field_descriptor.hpp"
#include "scl/io/scl_buffered_istream.hpp"
#include "scl/io/scl_ostream.hpp"
#include "tla/build/key_table_writer.hpp"

#include <cstdint>
#include <span>
#include <string>

namespace tla {

class Tla_pair_sorter;

// Builds one key table after another, each by one reading of the records.
class Key_table_builder {
public:
    // `stream` reads `records`, which holds `record_count` records that stand in the file from
    // `header_end` on. All must outlive the builder.
    Key_table_builder(std::span<const Field_descriptor> schema, const scl::Scl_buffer& records,
                      scl::Scl_buffered_istream& stream, std::uint32_t record_count,
                      std::uint64_t header_end);

    // Name, padding and pairs. Sets TLA_STATUS_KEY_NAME, with the name, when no field has it.
    void write_key_table(std::u16string_view key_name, scl::Scl_ostream& out,
                         scl::Scl_status& status);

private:
    void write_pairs(std::size_t key_field, scl::Scl_ostream& out, scl::Scl_status& status);
    void collect_pairs(std::size_t key_field, const Offset_tagger& tagger, Tla_pair_sorter& sorter,
                       scl::Scl_status& status);

    std::span<const Field_descriptor> schema_;
    const scl::Scl_buffer& records_;
    scl::Scl_buffered_istream& stream_;
    std::uint32_t record_count_;
    std::uint64_t header_end_;
};

} // namespace tla
