#pragma once

#include "records/values/field_descriptor.hpp"
#include "records/values/tla_value_formatter.hpp"
#include "scl/io/scl_ostream.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tla {

// A field as it is read: UTF-8 bytes, or any others, which are kept as they are (scl_string.hpp).
using Tla_field_text = scl::Scl_text_span<char>;

// One for each column.
using Tla_record_text = std::span<const Tla_field_text>;

// Records with a field of more tokens than its count can say: the count wraps, and who reads the
// record takes values for counts.
struct Tla_wrapped_records {
    std::uint64_t count = 0;
    std::uint64_t first = 0; // its number among all records, from 1
};

// Is called with each record as it is made, so that records need not be read again.
class Tla_record_listener {
public:
    Tla_record_listener() = default;
    Tla_record_listener(const Tla_record_listener&) = delete;
    Tla_record_listener& operator=(const Tla_record_listener&) = delete;
    virtual ~Tla_record_listener() = default;

    // The whole record in the layout of record_layout.hpp, valid during the call; empty for one too
    // large to be put together in memory, which is written all the same.
    virtual void record_made(std::span<const std::byte> record) = 0;
};

// Writes records: each field trimmed, formatted by its column's formatter and stored as token
// values, then one byte 0x00. A column whose formatter type is unknown contributes nothing, and
// when it is the last one the record goes without its closing byte.
class Tla_record_processor {
public:
    // `fields` are the columns; `key_positions` are those that may not be empty. `listener` may be
    // null; else it must outlive the processor.
    Tla_record_processor(std::span<const Field_descriptor> fields,
                         std::span<const std::uint64_t> key_positions,
                         Tla_record_listener* listener);

    [[nodiscard]] std::size_t column_count() const { return columns_.size(); }
    // Among the records written so far.
    [[nodiscard]] const Tla_wrapped_records& wrapped_records() const { return wrapped_; }

    // Does nothing when the number of fields is not that of the columns. Pushes
    // TLA_STATUS_EMPTY_KEY for a key field that is empty after trimming, and stops there; leaves
    // SCL_STATUS_WRITE_FAILED when `out` cannot be written. Throws std::runtime_error for a field
    // of more tokens than there may be.
    void process(Tla_record_text record, scl::Scl_ostream& out, scl::Scl_status& status);

private:
    struct Column {
        Tla_value_formatter formatter;
        bool is_key = false;
    };

    template <typename Fields>
    [[nodiscard]] bool format_fields(Tla_record_text record, scl::Scl_status& status, Fields& to);
    template <typename Fields>
    [[nodiscard]] bool format_text(const Column& column, Tla_field_text field,
                                   scl::Scl_status& status, Fields& to);
    template <typename Fields>
    [[nodiscard]] bool format_wide(const Column& column, Tla_field_text field,
                                   scl::Scl_status& status, Fields& to);
    template <typename Value, typename Fields>
    [[nodiscard]] bool format_value(const Column& column, Value trimmed, scl::Scl_status& status,
                                    Fields& to);
    [[nodiscard]] bool ends_with_byte() const { return columns_.back().formatter.is_known(); }
    void process_large(Tla_record_text record, scl::Scl_ostream& out, scl::Scl_status& status);

    std::vector<Column> columns_;
    Tla_record_listener* listener_;
    Tla_value_buffer buffer_;
    std::uint64_t record_count_ = 0; // written so far
    Tla_wrapped_records wrapped_;
};

} // namespace tla
