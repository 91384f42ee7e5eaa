#include "records/tla_record_reader.hpp"

#include "scl/text/scl_string.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tla {

void Record_text::add(std::string_view utf8) {
    if (count_ == fields_.size()) fields_.emplace_back();
    scl::scl_stow(utf8, fields_[count_++]);
}

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

Tla_read_result Tla_record_reader::read_records(Bytes lines, scl::Scl_status& status) {
    while (!lines.empty() && result_ == Tla_read_result::finished && !status.has_failed()) {
        lines = lines.subspan(take_piece(lines, status));
    }
    return result_;
}

// Takes a field or the end of one, or what stands before a byte that may begin a mark. Returns how
// many bytes are done.
std::size_t Tla_record_reader::take_piece(Bytes bytes, scl::Scl_status& status) {
    const std::size_t count = count_before_delimiter(bytes);
    const Bytes before = bytes.first(count);
    const Bytes rest = bytes.subspan(count);
    if (rest.empty()) return count;
    if (rest[0] == FIELD_SEPARATOR) {
        end_field(before);
        return count + 1;
    }
    if (const std::size_t line_end = line_end_size(rest); line_end != 0) {
        end_field(before);
        end_record(status);
        return count + line_end;
    }
    if (rest[0] == CARRIAGE_RETURN) {
        result_ = Tla_read_result::invalid_line_ending;
        return count;
    }
    gather(before);
    return count + take_mark_or_byte(rest);
}

std::size_t Tla_record_reader::take_mark_or_byte(Bytes bytes) {
    if (begins_with(bytes, BYTE_ORDER_MARK)) return BYTE_ORDER_MARK.size();
    gather(bytes.first(1));
    return 1;
}

// Fields beyond the last column are only counted, so that a line of any number of them takes no
// further memory.
void Tla_record_reader::gather(Bytes bytes) {
    if (field_count_ < processor_.column_count()) gathered_ += as_text(bytes);
}

void Tla_record_reader::end_field(Bytes bytes) {
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

void Tla_record_reader::end_record(scl::Scl_status& status) {
    if (field_count_ != processor_.column_count()) {
        result_ = Tla_read_result::field_count_mismatch;
        return;
    }
    processor_.process(record_.fields(), out_, status);
    record_.clear();
    field_count_ = 0;
}

} // namespace tla
