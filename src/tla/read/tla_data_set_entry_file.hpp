#pragma once

#include "records/field_descriptor.hpp"
#include "tla/read/tla_data_set_entry_base.hpp"

#include <cstddef>
#include <span>

namespace scl {
class Scl_buffer;
class Scl_buffered_istream;
} // namespace scl

namespace tla {

class Record_source;

// A record read from a file of either version. Comes from a connector, which must outlive it.
//
// Reading pushes TLA_STATUS_RECORD_END when a record of version 2 does not end with 0x00, sets
// TLA_STATUS_VALUE_COUNT when one of version 1 has more or fewer texts than the file has fields,
// and leaves SCL_STATUS_END_OF_DATA or SCL_STATUS_READ_FAILED as the file reports them. A text of
// version 1 with more tokens than there may be throws std::runtime_error.
class Tla_data_set_entry_file final : public Tla_data_set_entry_base {
public:
    // Offsets in bytes from the start of the file; `data_start` is that of the first record.
    Tla_data_set_entry_file(const std::vector<Field_descriptor>& fields, std::uint8_t version,
                            std::uint64_t data_start, std::int64_t record_offset,
                            const scl::Scl_buffer& file);

    [[nodiscard]] bool token_values(std::u16string_view field_name,
                                    std::vector<std::uint64_t>& values,
                                    Formatter_type_id& type) const override;
    [[nodiscard]] bool text_value(std::u16string_view field_name, std::u16string& text,
                                  Formatter_type_id& type) const override;
    void read(scl::Scl_status& status) override;

    // The same by means that are shared with other records.
    void read(Record_source& source, scl::Scl_status& status);
    // Leaves out what version 1 has to make of the texts, their token values.
    void read_stored(Record_source& source, scl::Scl_status& status);

    // The stored text, in UTF-8, of the field at a position of the field list; false as above. It
    // lies in the entry.
    [[nodiscard]] bool stored_text(std::size_t field, std::string_view& text) const;

    [[nodiscard]] std::int64_t record_offset() const { return record_offset_; }
    // In bytes, as far as it was read.
    [[nodiscard]] std::uint64_t record_size() const { return record_size_; }

private:
    [[nodiscard]] std::size_t find_field(std::u16string_view name) const;
    void read_token_lists(scl::Scl_buffered_istream& in, scl::Scl_status& status);
    void read_texts(scl::Scl_buffered_istream& in, scl::Scl_status& status);
    [[nodiscard]] std::size_t take_texts(std::span<const std::byte> bytes, std::uint64_t position,
                                         std::string& text, bool& ended);
    void tokenise_texts();

    const scl::Scl_buffer& file_;
    const std::vector<Field_descriptor>& fields_;
    std::int64_t record_offset_;
    std::uint64_t data_start_;
    std::uint64_t record_size_ = 0;
    std::vector<std::string> texts_;                      // of version 1, one a field
    std::vector<std::vector<std::uint64_t>> token_lists_; // one a field
    std::uint8_t version_;
};

} // namespace tla
