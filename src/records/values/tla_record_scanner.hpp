#pragma once

#include "scl/io/scl_buffered_istream.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tla {

// Steps through a file's records, one after the other, in the layout of record_layout.hpp.
class Tla_record_scanner {
public:
    // Reads from the stream's position on. The stream must outlive the scanner; the caller may
    // move its position between records.
    Tla_record_scanner(scl::Scl_buffered_istream& in, std::size_t field_count)
        : in_(in), field_count_(field_count) {}

    // The next record without its closing byte, valid until the next call. Pushes
    // TLA_STATUS_RECORD_END when that byte is not 0. Pushes SCL_STATUS_END_OF_DATA when the data
    // ends before the record does, and gives an empty record, or the whole record when only its
    // closing byte is missing.
    [[nodiscard]] std::span<const std::byte> next(scl::Scl_status& status);

private:
    [[nodiscard]] static std::span<const std::byte> without_end(std::span<const std::byte> record,
                                                                scl::Scl_status& status);
    [[nodiscard]] std::span<const std::byte> next_across_windows(scl::Scl_status& status);
    [[nodiscard]] std::span<const std::byte> look(std::size_t count, scl::Scl_status& status);

    scl::Scl_buffered_istream& in_;
    std::size_t field_count_;
    std::vector<std::byte> spare_; // a record that is larger than the stream's window
};

} // namespace tla
