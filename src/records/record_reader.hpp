#pragma once

#include "records/record_processor.hpp"
#include "records/record_text.hpp"
#include "scl/scl_buffered_istream.hpp"

#include <cstddef>
#include <span>
#include <string>

namespace tla {

enum class Read_result {
    finished,             // at the end of the input, or at an error in the status
    field_count_mismatch, // a line has more or fewer fields than there are columns
    invalid_line_ending,  // a CR without an LF after it
};

// Splits UTF-8 text into records, one a line (LF or CR LF), and fields, separated by TAB, and hands
// each record to a processor. A byte order mark is dropped wherever it stands. What follows the
// last line end is not a record and is left out.
class Record_reader {
public:
    // All three must outlive the reader.
    Record_reader(scl::Scl_buffered_istream& in, Record_processor& processor,
                  scl::Scl_ostream& out);

    [[nodiscard]] Read_result read_records(scl::Scl_status& status);

private:
    using Bytes = std::span<const std::byte>;

    // Takes lines and fields off the window's front and returns how many bytes are done; what is
    // left begins with a byte that needs a look beyond the window.
    [[nodiscard]] std::size_t take_window(Bytes window, scl::Scl_status& status);
    void take_across_windows(scl::Scl_status& status);
    void take_line_feed_after_return(scl::Scl_status& status);
    void take_mark_or_byte(scl::Scl_status& status);
    void gather(Bytes bytes);
    void end_field(Bytes bytes);
    void end_record(scl::Scl_status& status);
    [[nodiscard]] bool goes_on(const scl::Scl_status& status) const {
        return result_ == Read_result::finished && !status.has_failed();
    }

    scl::Scl_buffered_istream& in_;
    Record_processor& processor_;
    scl::Scl_ostream& out_;
    Read_result result_ = Read_result::finished;
    std::string gathered_; // of a field that does not stand in one piece
    Record_text record_;   // no more fields than there are columns: further ones are only counted
    std::size_t field_count_ = 0;
};

} // namespace tla
