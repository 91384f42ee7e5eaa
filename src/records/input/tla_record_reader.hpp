#pragma once

#include "records/input/padded_text.hpp"
#include "records/input/tla_record_processor.hpp"
#include "scl/io/scl_buffered_istream.hpp"

#include <cstddef>
#include <string_view>
#include <vector>

namespace tla {

enum class Tla_read_result {
    finished,             // at the end of the input, or at an error in the status
    field_count_mismatch, // a line has more or fewer fields than there are columns
    invalid_line_ending,  // a CR without an LF after it
};

// Splits UTF-8 text into lines (LF or CR LF) and fields (TAB), and hands each line to a record
// processor. Byte order marks are dropped, wherever they stand. Text after the last line end is
// ignored.
//
// Of several faults the first in the text is reported, as if it were read byte by byte. So a line
// is processed before the next one is looked at, and a window before the next one is read.
class Tla_record_reader {
public:
    // Both must outlive the reader.
    Tla_record_reader(Tla_record_processor& processor, scl::Scl_ostream& out)
        : processor_(processor),
          out_(out),
          column_count_(processor.column_count()),
          fields_(column_count_) {}

    // Reads to the end of the input or to the first fault; to be called once. Leaves
    // SCL_STATUS_READ_FAILED when the input cannot be read, and the codes of
    // Tla_record_processor::process; throws as that does.
    [[nodiscard]] Tla_read_result read_records(scl::Scl_buffered_istream& in,
                                               scl::Scl_status& status);

private:
    // A line whose end has not been found yet.
    struct Line {
        const char* begin;
        const char* field = begin;    // where the next field begins
        std::size_t field_count = 0;  // fields beyond the last column are only counted
        std::uint64_t mark_leads = 0; // not 0 where a byte order mark may begin
    };

    void take_window(std::string_view window, scl::Scl_status& status);
    [[nodiscard]] std::size_t complete_line(std::string_view window, scl::Scl_status& status);
    [[nodiscard]] std::size_t take_lines(std::string_view text, scl::Scl_status& status);
    void end_field(Line& line, const char* at);
    void end_line(Line line, const char* at, scl::Scl_status& status);
    void check_returns(std::string_view text);
    void drop_marks();
    [[nodiscard]] bool goes_on(const scl::Scl_status& status) const {
        return result_ == Tla_read_result::finished && !status.has_failed();
    }

    Tla_record_processor& processor_;
    scl::Scl_ostream& out_;
    const std::size_t column_count_;
    Tla_read_result result_ = Tla_read_result::finished;

    Padded_text open_line_;              // what earlier windows hold of the line that has not ended
    bool after_carriage_return_ = false; // the last window ended with one

    std::vector<Tla_field_text> fields_; // of the line that is being read, one for each column
    Padded_text unmarked_;               // fields that lost a byte order mark
};

} // namespace tla
