#pragma once

#include "records/values/field_descriptor.hpp"
#include "tla/read/entries/tla_data_set_entry_base.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

namespace scl {
class Scl_buffered_istream;
} // namespace scl
namespace tla {
class Entry_reader;
struct Entry_source;
} // namespace tla

#pragma GCC visibility push(default) // installed

namespace tla {

// A record read from a file of either version. Comes from a connector, and answers as it did, by
// the names of its own file's fields, whatever the connector closes, opens or loads next.
//
// It keeps the record's bytes, or shares a file in memory that holds them, which then stays there
// as long as the entry. Finding a field takes a few steps, wherever it stands. Version 1 stores
// texts, whose token values are made when they are asked for: token_values(), values_of() and
// holds() throw std::runtime_error for a text of more than 15,000,000 tokens.
class Tla_data_set_entry_file final : public Tla_data_set_entry_base {
public:
    [[nodiscard]] bool token_values(std::u16string_view field_name,
                                    std::vector<std::uint64_t>& values,
                                    Formatter_type_id& type) const override;
    [[nodiscard]] bool text_value(std::u16string_view field_name, std::u16string& text,
                                  Formatter_type_id& type) const override;

    // Pushes TLA_STATUS_RECORD_END when a record of version 2 does not end with 0x00; its values
    // can be asked for all the same. Sets TLA_STATUS_VALUE_COUNT when one of version 1 has more or
    // fewer texts than the file has fields. Leaves SCL_STATUS_END_OF_DATA, SCL_STATUS_READ_FAILED
    // as the file reports them.
    void read(scl::Scl_status& status) override;

    // Replaces `values` by the token values of the field at an index of the field list. False, and
    // nothing replaced, past its end.
    [[nodiscard]] bool values_of(std::size_t field, std::vector<std::uint64_t>& values) const;
    // Whether the field at an index of the field list has these token values; false past its end.
    [[nodiscard]] bool holds(std::size_t field, std::span<const std::uint64_t> values) const;
    // Replaces `texts` by those of all fields, in UTF-8, which last as long as the entry. False,
    // and nothing replaced, for every version but 1.
    [[nodiscard]] bool texts(std::vector<std::string_view>& texts) const;

    [[nodiscard]] std::int64_t record_offset() const { return record_offset_; }
    // In bytes, as far as it was read.
    [[nodiscard]] std::uint64_t record_size() const { return bytes().size(); }

private:
    friend class Entry_reader; // makes all entries

    // Offsets in bytes from the start of the file; `data_start` is that of the first record.
    Tla_data_set_entry_file(std::shared_ptr<const Entry_source> source, std::uint8_t version,
                            std::uint64_t data_start, std::int64_t record_offset);
    // As read(), through a stream that is shared with other records; its position does not matter.
    void read_from(scl::Scl_buffered_istream& in, scl::Scl_status& status);

    [[nodiscard]] std::span<const std::byte> bytes() const;
    [[nodiscard]] std::optional<std::size_t> find_field(std::u16string_view name) const;
    [[nodiscard]] bool has_texts() const;
    [[nodiscard]] const std::vector<Field_descriptor>& fields() const;
    [[nodiscard]] std::string_view text_of(std::size_t field) const;
    [[nodiscard]] std::span<const std::byte> field_bytes(std::size_t field) const;
    void note_starts();
    void read_values(scl::Scl_buffered_istream& in, scl::Scl_status& status);
    void read_long_values(scl::Scl_buffered_istream& in, scl::Scl_status& status);
    [[nodiscard]] bool take(std::uint64_t size, scl::Scl_buffered_istream& in,
                            scl::Scl_status& status);
    void read_texts(scl::Scl_buffered_istream& in, scl::Scl_status& status);
    [[nodiscard]] std::size_t take_texts(std::span<const std::byte> bytes, std::uint64_t position);

    std::shared_ptr<const Entry_source> source_;
    std::int64_t record_offset_;
    std::uint64_t data_start_;
    std::string record_;                   // its bytes, those of version 1 unscrambled
    std::span<const std::byte> in_memory_; // or where they lie in a file in memory
    std::size_t field_count_ = 0;          // whole fields in them
    // Where texts begin in them: each; token values: each of so many fields, in a long record.
    std::vector<std::size_t> starts_;
    std::uint8_t version_;
};

} // namespace tla

#pragma GCC visibility pop
