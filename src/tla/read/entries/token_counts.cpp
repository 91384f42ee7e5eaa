#include "tla/read/entries/token_counts.hpp"

#include "records/values/record_layout.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/io/scl_buffered_istream.hpp"

#include <algorithm>

namespace tla {

// All fields in one pass: a caller that asks for one key mostly asks for the others as well.
std::vector<std::uint16_t> largest_token_counts(const scl::Scl_buffer& file,
                                                const Tla_data_set_header& header,
                                                scl::Scl_status& status) {
    std::vector<std::uint16_t> largest(header.field_count);
    scl::Scl_buffered_istream in(file, status);
    in.set_position(header.data_start);
    // As many as the header says. Where a record was written differently from how it is read (a
    // count that wrapped), the bytes behind the last one are no records.
    for (std::uint32_t left = header.record_count; left > 0 && !status.has_failed(); --left) {
        for (std::uint16_t& most : largest) {
            Tla_token_count count = 0;
            in.read_be(count, status);
            most = std::max(most, count);
            in.set_position(in.tell() + tla_field_size(count) - TLA_COUNT_BYTES);
        }
        std::uint8_t end = TLA_RECORD_END;
        in.read_be(end, status);
        if (!status.has_failed() && end != TLA_RECORD_END) status.push(TLA_STATUS_RECORD_END);
    }
    return largest;
}

} // namespace tla
