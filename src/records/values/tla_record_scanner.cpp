#include "records/values/tla_record_scanner.hpp"

#include "records/values/record_layout.hpp"
#include "records/values/tla_status_codes.hpp"

#include <algorithm>

namespace tla {

namespace {

constexpr std::uint64_t FIRST_LOOK =
    4096; // doubled before the first look; longer than most records

} // namespace

// Nearly every record lies in the window as a whole and is used there.
std::span<const std::byte> Tla_record_scanner::next(scl::Scl_status& status) {
    const std::span<const std::byte> window = in_.window(status);
    const Tla_record_extent extent = tla_measure_record(window, field_count_);
    if (extent.size > window.size()) return next_across_windows(status);
    in_.skip(extent.size);
    return without_end(window.first(extent.size), status);
}

// Nothing else marks a record's end, so this byte is the only check of its counts. The record is
// returned all the same; the status tells.
std::span<const std::byte> Tla_record_scanner::without_end(std::span<const std::byte> record,
                                                           scl::Scl_status& status) {
    if (record.back() != std::byte{TLA_RECORD_END}) status.push(TLA_STATUS_RECORD_END);
    return record.first(record.size() - TLA_RECORD_END_BYTES);
}

// Looks at more and more bytes from the record's start, until they hold the record or the data
// ends. Their number doubles, so that the time stays in proportion to the record.
std::span<const std::byte> Tla_record_scanner::next_across_windows(scl::Scl_status& status) {
    const std::uint64_t start = in_.tell();
    const std::uint64_t left = in_.size(status) - std::min(start, in_.size(status));
    std::span<const std::byte> bytes;
    Tla_record_extent extent{};
    std::uint64_t wanted = FIRST_LOOK;
    do {
        wanted = std::min(left, 2 * wanted);
        bytes = look(wanted, status);
        extent = tla_measure_record(bytes, field_count_);
        if (extent.size <= bytes.size()) {
            in_.set_position(start + extent.size);
            return without_end(bytes.first(extent.size), status);
        }
    } while (wanted < left && !status.has_failed());
    if (!status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
    const bool only_end_missing = extent.counts_known && extent.size == left + TLA_RECORD_END_BYTES;
    return only_end_missing ? bytes : bytes.first(0);
}

// The next bytes, without moving the position.
std::span<const std::byte> Tla_record_scanner::look(std::size_t count, scl::Scl_status& status) {
    if (count <= scl::Scl_buffered_istream::WINDOW_BYTES) return in_.window(count, status);
    const std::uint64_t start = in_.tell();
    spare_.resize(count);
    const std::size_t read = in_.read(count, spare_.data(), status);
    in_.set_position(start);
    return std::span(spare_).first(read);
}

} // namespace tla
