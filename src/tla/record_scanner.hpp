#pragma once

#include "scl/scl_buffered_istream.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tla {

// Steps through records in the layout of a records section: for each field a big-endian u16 count
// and as many values of 8 bytes, after the last field a byte 0x00. The end of the data in the
// middle of a step sets SCL_STATUS_END_OF_DATA.
class Record_scanner {
public:
    // The stream must outlive the scanner; the caller moves its position as it likes.
    explicit Record_scanner(scl::Scl_buffered_istream& in) : in_(in) {}

    [[nodiscard]] scl::Scl_buffered_istream& stream() { return in_; }

    // The next field's number of values; 0 after a failure.
    [[nodiscard]] std::uint16_t read_count(scl::Scl_status& status) {
        std::uint16_t count = 0;
        in_.read_be(count, status);
        return count;
    }
    void skip_values(std::uint16_t count, scl::Scl_status& status);
    // The bytes of `count` values; fewer after a failure. Valid until the next step.
    [[nodiscard]] std::span<const std::byte> read_values(std::uint16_t count,
                                                         scl::Scl_status& status);

    // The byte that ends a record: 0 in a good one. Unchanged when there is none.
    void read_end(std::uint8_t& end, scl::Scl_status& status) { in_.read_le(end, status); }

private:
    [[nodiscard]] std::span<const std::byte> read_into_spare(std::size_t bytes,
                                                             scl::Scl_status& status);

    scl::Scl_buffered_istream& in_;
    std::vector<std::byte> spare_; // for values that are larger than the stream's window
};

} // namespace tla
