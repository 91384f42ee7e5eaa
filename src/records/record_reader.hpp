#pragma once

#include "records/record_processor.hpp"
#include "records/record_text.hpp"

#include <cstddef>
#include <span>
#include <string>

namespace tla {

enum class Read_result {
    finished,             // at the end of the lines, or at an error in the status
    field_count_mismatch, // a line has more or fewer fields than there are columns
    invalid_line_ending,  // a CR without an LF after it
};

// Splits UTF-8 text into records, one a line (LF or CR LF), and fields, separated by TAB, and hands
// each record to a processor. A byte order mark is dropped wherever it stands. What follows the
// last line end is not a record and is left out.
class Record_reader {
public:
    // Both must outlive the reader.
    Record_reader(Record_processor& processor, scl::Scl_ostream& out)
        : processor_(processor), out_(out) {}

    [[nodiscard]] Read_result read_records(std::span<const std::byte> lines,
                                           scl::Scl_status& status);

private:
    using Bytes = std::span<const std::byte>;

    [[nodiscard]] std::size_t take_piece(Bytes bytes, scl::Scl_status& status);
    [[nodiscard]] std::size_t take_mark_or_byte(Bytes bytes);
    void gather(Bytes bytes);
    void end_field(Bytes bytes);
    void end_record(scl::Scl_status& status);

    Record_processor& processor_;
    scl::Scl_ostream& out_;
    Read_result result_ = Read_result::finished;
    std::string gathered_; // of a field that does not stand in one piece
    Record_text record_;   // no more fields than there are columns: further ones are only counted
    std::size_t field_count_ = 0;
};

} // namespace tla
