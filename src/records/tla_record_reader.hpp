#pragma once

#include "records/tla_record_processor.hpp"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tla {

// The fields of a record as UTF-16. Their memory is kept from record to record.
class Record_text {
public:
    void clear() { count_ = 0; }

    // Adds a field; bytes that are no UTF-8 are kept as they are (scl_string.hpp).
    void add(std::string_view utf8);

    // The caller may change them. Valid until the next change here.
    [[nodiscard]] std::span<std::u16string> fields() { return std::span(fields_).first(count_); }

private:
    std::vector<std::u16string> fields_; // only the first `count_` are the record's
    std::size_t count_ = 0;
};

enum class Tla_read_result {
    finished,             // at the end of the lines, or at an error in the status
    field_count_mismatch, // a line has more or fewer fields than there are columns
    invalid_line_ending,  // a CR without an LF after it
};

// Splits UTF-8 text into records, one a line (LF or CR LF), and fields, separated by TAB, and hands
// each record to a processor. A byte order mark is dropped wherever it stands. What follows the
// last line end is not a record and is left out.
class Tla_record_reader {
public:
    // Both must outlive the reader.
    Tla_record_reader(Tla_record_processor& processor, scl::Scl_ostream& out)
        : processor_(processor), out_(out) {}

    [[nodiscard]] Tla_read_result read_records(std::span<const std::byte> lines,
                                               scl::Scl_status& status);

private:
    using Bytes = std::span<const std::byte>;

    [[nodiscard]] std::size_t take_piece(Bytes bytes, scl::Scl_status& status);
    [[nodiscard]] std::size_t take_mark_or_byte(Bytes bytes);
    void gather(Bytes bytes);
    void end_field(Bytes bytes);
    void end_record(scl::Scl_status& status);

    Tla_record_processor& processor_;
    scl::Scl_ostream& out_;
    Tla_read_result result_ = Tla_read_result::finished;
    std::string gathered_; // of a field that does not stand in one piece
    Record_text record_;   // no more fields than there are columns: further ones are only counted
    std::size_t field_count_ = 0;
};

} // namespace tla
