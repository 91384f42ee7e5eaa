#include "records/record_reader.hpp"

#include "scl/scl_string.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace tla {

namespace {

constexpr std::byte FIELD_SEPARATOR{'\t'};
constexpr std::byte LINE_FEED{'\n'};
constexpr std::byte CARRIAGE_RETURN{'\r'};
constexpr std::array BYTE_ORDER_MARK = {std::byte{0xEF}, std::byte{0xBB}, std::byte{0xBF}};

constexpr std::array<bool, 256> make_delimiters() {
    std::array<bool, 256> delimiters{};
    for (const std::byte byte :
         {FIELD_SEPARATOR, LINE_FEED, CARRIAGE_RETURN, BYTE_ORDER_MARK.front()}) {
        delimiters[std::to_integer<std::size_t>(byte)] = true;
    }
    return delimiters;
}

constexpr std::array<bool, 256> DELIMITERS = make_delimiters();

std::size_t count_before_delimiter(std::span<const std::byte> bytes) {
    const auto found = std::find_if(bytes.begin(), bytes.end(), [](std::byte byte) {
        return DELIMITERS[std::to_integer<std::size_t>(byte)];
    });
    return static_cast<std::size_t>(found - bytes.begin());
}

std::string_view as_text(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

Record_reader::Record_reader(scl::Scl_buffered_istream& in, Record_processor& processor,
                             scl::Scl_ostream& out)
    : in_(in), processor_(processor), out_(out), fields_(processor.column_count()) {}

Read_result Record_reader::read_records(scl::Scl_status& status) {
    const std::uint64_t size = in_.size(status);
    while (in_.tell() != size && !status.has_failed() && result_ == Read_result::finished) {
        const Bytes window = in_.window(status);
        const std::size_t count = count_before_delimiter(window);
        if (count < window.size()) {
            in_.skip(count);
            take_delimiter(window.first(count), window[count], status);
        } else {
            gather(window);
            in_.skip(count);
            // The file became shorter while it was read.
            if (window.empty() && !status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
        }
    }
    return result_;
}

// The stream stands at the delimiter, behind the bytes `before` it.
void Record_reader::take_delimiter(Bytes before, std::byte delimiter, scl::Scl_status& status) {
    if (delimiter == FIELD_SEPARATOR) {
        in_.skip(1);
        end_field(before);
    } else if (delimiter == LINE_FEED) {
        in_.skip(1);
        end_field(before);
        end_record(status);
    } else {
        gather(before);
        if (delimiter == CARRIAGE_RETURN) {
            take_line_feed_after_return(status);
        } else {
            take_mark_or_byte(status);
        }
    }
}

void Record_reader::take_line_feed_after_return(scl::Scl_status& status) {
    const Bytes window = in_.window(2, status);
    if (status.has_failed()) return;
    if (window.size() < 2 || window[1] != LINE_FEED) {
        result_ = Read_result::invalid_line_ending;
        return;
    }
    in_.skip(2);
    end_field({});
    end_record(status);
}

void Record_reader::take_mark_or_byte(scl::Scl_status& status) {
    const Bytes window = in_.window(BYTE_ORDER_MARK.size(), status);
    if (status.has_failed()) return;
    const bool is_mark = window.size() >= BYTE_ORDER_MARK.size() &&
                         std::equal(BYTE_ORDER_MARK.begin(), BYTE_ORDER_MARK.end(), window.begin());
    if (!is_mark) gather(window.first(1));
    in_.skip(is_mark ? BYTE_ORDER_MARK.size() : 1);
}

// A field beyond the last column is never looked at, so that a line of any number of fields takes
// no memory.
void Record_reader::gather(Bytes bytes) {
    if (field_count_ < fields_.size()) gathered_ += as_text(bytes);
}

void Record_reader::end_field(Bytes bytes) {
    if (field_count_ < fields_.size()) {
        std::u16string& field = fields_[field_count_];
        if (gathered_.empty()) {
            scl::scl_stow(as_text(bytes), field);
        } else {
            gather(bytes);
            scl::scl_stow(gathered_, field);
            gathered_.clear();
        }
    }
    ++field_count_;
}

void Record_reader::end_record(scl::Scl_status& status) {
    if (field_count_ != fields_.size()) {
        result_ = Read_result::field_count_mismatch;
        return;
    }
    processor_.process(fields_, out_, status);
    field_count_ = 0;
}

} // namespace tla
