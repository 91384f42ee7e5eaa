#include "records/input/tla_record_reader.hpp"

#include "records/input/delimiters.hpp"

#include <algorithm>
#include <array>
#include <bit>

namespace tla {

namespace {

std::string_view as_text(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// The delimiters in the next 64 bytes. Near the end of the text zeros fill the block up; a zero
// ends nothing.
Delimiters find_next_delimiters(std::string_view rest) {
    if (rest.size() >= Delimiters::BLOCK) return find_delimiters(rest.data());
    std::array<char, Delimiters::BLOCK> block{};
    std::ranges::copy(rest, block.begin());
    return find_delimiters(block.data());
}

} // namespace

// A read failure is reported last: the bytes before it may hold a fault, and the first fault
// counts. A CR at the end of the input is a fault.
Tla_read_result Tla_record_reader::read_records(scl::Scl_buffered_istream& in,
                                                scl::Scl_status& status) {
    scl::Scl_status reading;
    while (goes_on(status)) {
        const std::string_view window = as_text(in.window(reading));
        const bool is_good = !after_carriage_return_ || window.starts_with(LINE_FEED);
        if (!is_good) result_ = Tla_read_result::invalid_line_ending;
        if (window.empty() || !is_good) break;
        take_window(window, status);
        in.skip(window.size());
    }
    if (goes_on(status)) status.push_top(reading);
    return result_;
}

// Takes lines in place where it can. A line goes through `open_line_` when the window ends inside
// it, or when fewer than SCL_BLOCK_BYTES readable bytes follow it in the window.
void Tla_record_reader::take_window(std::string_view window, scl::Scl_status& status) {
    after_carriage_return_ = window.ends_with(CARRIAGE_RETURN);
    if (!open_line_.empty()) window.remove_prefix(complete_line(window, status));
    const std::size_t unpadded = std::min(window.size(), scl::SCL_BLOCK_BYTES);
    const std::string_view padded = window.substr(0, window.size() - unpadded);
    if (goes_on(status)) window.remove_prefix(take_lines(padded, status));
    while (goes_on(status) && !window.empty()) {
        window.remove_prefix(complete_line(window, status));
    }
}

// Appends the window's part of the open line, and takes the line if it ends in this window. Returns
// the number of bytes used.
std::size_t Tla_record_reader::complete_line(std::string_view window, scl::Scl_status& status) {
    const std::string_view rest = window.substr(0, window.find(LINE_FEED)); // all, without one
    const std::string_view taken = window.substr(0, rest.size() + 1);
    check_returns(taken);
    if (result_ != Tla_read_result::finished) return 0;
    open_line_.append(taken);
    if (taken.size() == rest.size()) return taken.size();
    (void)take_lines(open_line_.view(), status);
    open_line_.clear();
    return taken.size();
}

// Finds a CR without LF. `text` holds at most one line end. A CR at the end of the window is left
// to read_records(): the next byte is not known yet.
void Tla_record_reader::check_returns(std::string_view text) {
    const std::size_t first = text.find(CARRIAGE_RETURN);
    if (first == std::string_view::npos || first + 1 == text.size()) return;
    if (text[first + 1] != LINE_FEED) result_ = Tla_read_result::invalid_line_ending;
}

// Takes all whole lines of the text and returns their size in bytes. The line that is being read is
// a local, so that the compiler keeps it in registers while fields are stored.
std::size_t Tla_record_reader::take_lines(std::string_view text, scl::Scl_status& status) {
    Line line{text.data()};
    for (std::size_t at = 0; at < text.size(); at += Delimiters::BLOCK) {
        Delimiters found = find_next_delimiters(text.substr(at));
        for (std::uint64_t ends = found.ends; ends != 0; ends &= ends - 1) {
            const char* const end = text.data() + at + std::countr_zero(ends);
            if (*end == FIELD_SEPARATOR) {
                end_field(line, end);
            } else if (*end == LINE_FEED) {
                const std::uint64_t before = ~ends & (ends - 1);
                line.mark_leads |= found.mark_leads & before;
                found.mark_leads &= ~before; // the next line's
                end_line(line, end, status);
                if (!goes_on(status)) return 0;
                line = Line{end + 1};
            } else if (end + 1 != text.data() + text.size() && end[1] != LINE_FEED) {
                result_ = Tla_read_result::invalid_line_ending;
                return 0;
            }
        }
        line.mark_leads |= found.mark_leads;
    }
    return static_cast<std::size_t>(line.begin - text.data());
}

// Fields past the last column are only counted: their number is the fault.
inline void Tla_record_reader::end_field(Line& line, const char* at) {
    if (line.field_count < column_count_) fields_[line.field_count] = {line.field, at};
    ++line.field_count;
    line.field = at + 1;
}

// A CR before the LF is part of the line end. Other CRs were refused before.
inline void Tla_record_reader::end_line(Line line, const char* at, scl::Scl_status& status) {
    const bool after_return = at != line.begin && at[-1] == CARRIAGE_RETURN;
    end_field(line, after_return ? at - 1 : at);
    if (line.field_count != column_count_) {
        result_ = Tla_read_result::field_count_mismatch;
        return;
    }
    if (line.mark_leads != 0) drop_marks();
    processor_.process(fields_, out_, status);
}

// Marks are dropped wherever they stand in a field. Searches on behind each dropped mark, so that
// bytes which come together there are not taken for another mark. Fields only become shorter: the
// memory for all of them is filled first, so that it does not move while they are copied within it.
void Tla_record_reader::drop_marks() {
    unmarked_.clear();
    for (const Tla_field_text& field : fields_) {
        unmarked_.append(field.view());
    }
    char* to = unmarked_.data();
    for (Tla_field_text& field : fields_) {
        const char* const begin = to;
        std::string_view rest = field.view();
        for (std::size_t mark = 0; mark != std::string_view::npos;) {
            mark = rest.find(BYTE_ORDER_MARK);
            to = std::ranges::copy(rest.substr(0, mark), to).out;
            rest.remove_prefix(
                std::min(rest.size(), rest.substr(0, mark).size() + BYTE_ORDER_MARK.size()));
        }
        field = {begin, to};
    }
}

} // namespace tla
