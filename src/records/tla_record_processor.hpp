#pragma once

#include "records/field_descriptor.hpp"
#include "records/tla_formatters.hpp"
#include "scl/io/scl_ostream.hpp"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tla {

// Turns formatted values into token values: the CRC-64 of each word, number, punctuation mark and
// symbol of the text. The list of values is kept from one value to the next.
class Field_token_writer {
public:
    // Writes the field as a record holds it: the token count as a big-endian u16, which wraps at
    // 65,536, then every token value as a big-endian u64. A value without text has the count 0; one
    // of more tokens than there may be throws std::runtime_error.
    void write(std::u16string_view value, scl::Scl_ostream& out, scl::Scl_status& status);

private:
    std::vector<std::uint64_t> values_;
};

// Writes records: each field trimmed, formatted by its column's formatter and stored as token
// values, then one byte 0x00. A column whose formatter type is unknown contributes nothing, and
// when it is the last one the record goes without its closing byte.
class Tla_record_processor {
public:
    // `types` names the columns' formatters; `key_positions` are the columns that may not be empty.
    Tla_record_processor(std::span<const Formatter_type_id> types,
                         std::span<const std::uint64_t> key_positions);

    [[nodiscard]] std::size_t column_count() const { return columns_.size(); }

    // The fields are formatted in their places. Does nothing when their number is not that of the
    // columns. Pushes TLA_STATUS_EMPTY_KEY for a key field that is empty after trimming, and stops
    // there.
    void process(std::span<std::u16string> fields, scl::Scl_ostream& out, scl::Scl_status& status);

private:
    struct Column {
        std::unique_ptr<const Tla_formatter_base> formatter; // null when the type is unknown
        bool is_key = false;
    };

    void process_field(const Column& column, std::u16string& field, scl::Scl_ostream& out,
                       scl::Scl_status& status);

    std::vector<Column> columns_;
    Field_token_writer token_writer_;
};

} // namespace tla
