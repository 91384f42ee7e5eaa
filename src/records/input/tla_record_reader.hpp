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

// Splits UTF-8 text into records, one a line (LF or CR LF), and fields, separated by TAB, and hands
// each record to a processor. A byte order mark is dropped wherever it comes. What follows the
// last line end is not a record and is left out.
//
// Of several faults the first one counts, as if bytes were read one by one: no window is asked for
// before all of the last one is used, and no line waits for another one.
class Tla_record_reader {
public:
    // Both must outlive the reader.
    Tla_record_reader(Tla_record_processor& processor, scl::Scl_ostream& out)
        : processor_(processor),
          out_(out),
          column_count_(processor.column_count()),
          fields_(column_count_) {}

    // Reads to the end. Leaves SCL_STATUS_READ_FAILED when the input cannot be read to its end, and
    // what processing a record leaves; throws as that does. To be called once.
    [[nodiscard]] Tla_read_result read_records(scl::Scl_buffered_istream& in,
                                               scl::Scl_status& status);

private:
    void take_window(std::string_view window, scl::Scl_status& status);
    [[nodiscard]] std::size_t complete_line(std::string_view window, scl::Scl_status& status);
    [[nodiscard]] std::size_t take_lines(std::string_view text, scl::Scl_status& status);
    void begin_line(const char* at);
    void end_field(const char* at);
    void end_line(const char* at, const char* text, scl::Scl_status& status);
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

    // Of the line at hand.
    const char* field_begin_ = nullptr;
    std::size_t field_count_ = 0;        // fields beyond the last column are only counted
    std::vector<Tla_field_text> fields_; // one for each column
    Padded_text unmarked_;               // fields that lost a byte order mark
    bool is_ascii_ = true;
};

} // namespace tla
