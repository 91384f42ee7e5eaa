#include "records/record_reader.hpp"

#include "scl/scl_string.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tla {

namespace {

constexpr std::byte FIELD_SEPARATOR{'\t'};
constexpr std::byte LINE_FEED{'\n'};
constexpr std::byte CARRIAGE_RETURN{'\r'};
constexpr std::array LINE_END = {CARRIAGE_RETURN, LINE_FEED};
constexpr std::array BYTE_ORDER_MARK = {std::byte{0xEF}, std::byte{0xBB}, std::byte{0xBF}};

bool is_delimiter(std::byte byte) {
    return byte == FIELD_SEPARATOR || byte == LINE_FEED || byte == CARRIAGE_RETURN ||
           byte == BYTE_ORDER_MARK.front();
}

// Sixteen bytes side by side.
using Block [[gnu::vector_size(16)]] = std::uint8_t;
using Halves [[gnu::vector_size(16)]] = std::uint64_t;

Block all(std::byte byte) {
    return Block{} + std::to_integer<std::uint8_t>(byte);
}

// The place of the first delimiter; 16 when there is none.
std::size_t find_delimiter(const Block& block) {
    const auto hits = (block == all(FIELD_SEPARATOR)) | (block == all(LINE_FEED)) |
                      (block == all(CARRIAGE_RETURN)) | (block == all(BYTE_ORDER_MARK.front()));
    const auto halves = std::bit_cast<Halves>(hits);
    const int bits =
        halves[0] != 0 ? std::countr_zero(halves[0]) : 64 + std::countr_zero(halves[1]);
    return static_cast<std::size_t>(bits) / 8;
}

std::size_t count_before_delimiter(std::span<const std::byte> bytes) {
    std::size_t at = 0;
    for (; bytes.size() - at >= sizeof(Block); at += sizeof(Block)) {
        Block block;
        std::memcpy(&block, bytes.data() + at, sizeof block);
        const std::size_t place = find_delimiter(block);
        if (place < sizeof(Block)) return at + place;
    }
    while (at < bytes.size() && !is_delimiter(bytes[at])) {
        ++at;
    }
    return at;
}

bool begins_with(std::span<const std::byte> bytes, std::span<const std::byte> start) {
    return bytes.size() >= start.size() && std::ranges::equal(bytes.first(start.size()), start);
}

// Of the line end, LF or CR LF, that the bytes begin with; 0 when they begin with none.
std::size_t line_end_size(std::span<const std::byte> bytes) {
    if (!bytes.empty() && bytes[0] == LINE_FEED) return 1;
    return begins_with(bytes, LINE_END) ? LINE_END.size() : 0;
}

std::string_view as_text(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

Record_reader::Record_reader(scl::Scl_buffered_istream& in, Record_processor& processor,
                             scl::Scl_ostream& out)
    : in_(in), processor_(processor), out_(out) {}

Read_result Record_reader::read_records(scl::Scl_status& status) {
    const std::uint64_t size = in_.size(status);
    while (in_.tell() != size && goes_on(status)) {
        const Bytes window = in_.window(status);
        const std::size_t done = take_window(window, status);
        in_.skip(done);
        if (done < window.size() && goes_on(status)) take_across_windows(status);
        // The file became shorter while it was read.
        if (window.empty() && !status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
    }
    return result_;
}

std::size_t Record_reader::take_window(Bytes window, scl::Scl_status& status) {
    std::size_t at = 0;
    while (goes_on(status)) {
        const std::size_t count = count_before_delimiter(window.subspan(at));
        const Bytes before = window.subspan(at, count);
        const Bytes rest = window.subspan(at + count);
        if (!rest.empty() && rest[0] == FIELD_SEPARATOR) {
            end_field(before);
            at += count + 1;
        } else if (const std::size_t line_end = line_end_size(rest); line_end != 0) {
            end_field(before);
            end_record(status);
            at += count + line_end;
        } else {
            gather(before);
            return at + count;
        }
    }
    return at;
}

// The stream stands at a CR without an LF after it in the window, or at what may be a mark.
void Record_reader::take_across_windows(scl::Scl_status& status) {
    const Bytes window = in_.window(status);
    if (window[0] == CARRIAGE_RETURN) {
        take_line_feed_after_return(status);
    } else {
        take_mark_or_byte(status);
    }
}

void Record_reader::take_line_feed_after_return(scl::Scl_status& status) {
    const Bytes window = in_.window(LINE_END.size(), status);
    if (status.has_failed()) return;
    const std::size_t size = line_end_size(window);
    if (size == 0) {
        result_ = Read_result::invalid_line_ending;
        return;
    }
    in_.skip(size);
    end_field({});
    end_record(status);
}

void Record_reader::take_mark_or_byte(scl::Scl_status& status) {
    const Bytes window = in_.window(BYTE_ORDER_MARK.size(), status);
    if (status.has_failed()) return;
    const bool is_mark = begins_with(window, BYTE_ORDER_MARK);
    if (!is_mark) gather(window.first(1));
    in_.skip(is_mark ? BYTE_ORDER_MARK.size() : 1);
}

// A field beyond the last column is never looked at, so that a line of any number of fields takes
// no memory.
void Record_reader::gather(Bytes bytes) {
    if (field_count_ < processor_.column_count()) gathered_ += as_text(bytes);
}

void Record_reader::end_field(Bytes bytes) {
    if (field_count_ < processor_.column_count()) {
        if (gathered_.empty()) {
            record_.add(as_text(bytes));
        } else {
            gather(bytes);
            record_.add(gathered_);
            gathered_.clear();
        }
    }
    ++field_count_;
}

void Record_reader::end_record(scl::Scl_status& status) {
    if (field_count_ != processor_.column_count()) {
        result_ = Read_result::field_count_mismatch;
        return;
    }
    processor_.process(record_.fields(), out_, status);
    record_.clear();
    field_count_ = 0;
}

} // namespace tla
