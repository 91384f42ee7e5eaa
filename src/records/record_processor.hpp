#pragma once

#include "records/field_token_writer.hpp"
#include "records/formatter_type_id.hpp"
#include "records/tla_formatter_base.hpp"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tla {

// Writes records: each field trimmed, formatted by its column's formatter and stored as token
// values, then one byte 0x00. A column whose formatter type is unknown contributes nothing, and
// when it is the last one the record goes without its closing byte.
class Record_processor {
public:
    // `types` names the columns' formatters; `key_positions` are the columns that may not be empty.
    Record_processor(std::span<const Formatter_type_id> types,
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
