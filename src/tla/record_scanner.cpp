#include "tla/record_scanner.hpp"

#include "records/tla_status_codes.hpp"
#include "tla/data_set_layout.hpp"

#include <algorithm>

namespace tla {

namespace {

constexpr std::size_t COUNT_BYTES = 2;
constexpr std::size_t END_BYTES = 1;
constexpr std::uint64_t FIRST_LOOK = 4096;

std::size_t field_size(const std::byte* field) {
    return COUNT_BYTES + TOKEN_VALUE_BYTES * scl::scl_load_be<std::uint16_t>(field);
}

struct Extent {
    std::size_t size;  // the closing byte included
    bool counts_known; // when not, there are not enough bytes to tell, and more than `size` needed
};

Extent measure(std::span<const std::byte> bytes, std::size_t field_count) {
    std::size_t size = 0;
    for (std::size_t field = 0; field < field_count; ++field) {
        if (bytes.size() < size + COUNT_BYTES) return {size + COUNT_BYTES, false};
        size += field_size(bytes.data() + size);
    }
    return {size + END_BYTES, true};
}

} // namespace

std::span<const std::byte> Record_scanner::next(scl::Scl_status& status) {
    const std::span<const std::byte> window = in_.window(status);
    const Extent extent = measure(window, field_count_);
    if (extent.size > window.size()) return next_across_windows(status);
    in_.skip(extent.size);
    return without_end(window.first(extent.size), status);
}

std::span<const std::byte> Record_scanner::without_end(std::span<const std::byte> record,
                                                       scl::Scl_status& status) {
    if (record.back() != std::byte{0}) status.push(TLA_STATUS_RECORD_END);
    return record.first(record.size() - END_BYTES);
}

// Looks at more and more bytes from the record's start on until it is there or the data ends. Their
// number doubles, so that a large record is not measured too often.
std::span<const std::byte> Record_scanner::next_across_windows(scl::Scl_status& status) {
    const std::uint64_t start = in_.tell();
    const std::uint64_t left = in_.size(status) - std::min(start, in_.size(status));
    std::span<const std::byte> bytes;
    Extent extent{};
    std::uint64_t wanted = FIRST_LOOK;
    do {
        wanted = std::min(left, 2 * wanted);
        bytes = look(wanted, status);
        extent = measure(bytes, field_count_);
        if (extent.size <= bytes.size()) {
            in_.set_position(start + extent.size);
            return without_end(bytes.first(extent.size), status);
        }
    } while (wanted < left && !status.has_failed());
    if (!status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
    const bool only_end_missing = extent.counts_known && extent.size == left + END_BYTES;
    return only_end_missing ? bytes : bytes.first(0);
}

// Bytes from the position on, which stays.
std::span<const std::byte> Record_scanner::look(std::size_t count, scl::Scl_status& status) {
    if (count <= scl::Scl_buffered_istream::WINDOW_BYTES) return in_.window(count, status);
    const std::uint64_t start = in_.tell();
    spare_.resize(count);
    const std::size_t read = in_.read(count, spare_.data(), status);
    in_.set_position(start);
    return std::span(spare_).first(read);
}

std::span<const std::byte> field_values(std::span<const std::byte> record, std::size_t field) {
    const std::byte* at = record.data();
    for (; field > 0; --field) {
        at += field_size(at);
    }
    return {at + COUNT_BYTES, field_size(at) - COUNT_BYTES};
}

} // namespace tla
