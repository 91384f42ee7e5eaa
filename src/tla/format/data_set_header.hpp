#pragma once

#include "records/field_descriptor.hpp"

#include <array>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

namespace scl {
class Scl_buffer;
class Scl_ostream;
class Scl_status;
} // namespace scl

namespace tla {

// What the front of a data set file says. Offsets in bytes from the start of the file.
struct Tla_data_set_header {
    std::uint64_t stored_checksum = 0;
    std::uint64_t index_offset = 0; // of the first key table
    std::uint64_t data_start = 0;   // of the first record
    std::array<std::uint8_t, 2> raw_version{};
    std::uint16_t key_count = 0;
    std::uint32_t record_count = 0;
    std::vector<Field_descriptor> fields;

    // The second byte says nothing.
    [[nodiscard]] std::uint8_t version() const { return raw_version.front(); }
};

// Reads the header from the front of a file. Numbers replace those in `header`, fields are added to
// it; after a failure it keeps what was read before.
//
// Pushes TLA_STATUS_NO_DATA_SET, with `file_name`, for another magic, and replaces the end of the
// data by it; pushes TLA_STATUS_VERSION, with `file_name`, for another version than the latest
// unless any will do; sets TLA_STATUS_FIELD_LIST for a malformed field list. A file that cannot be
// read leaves SCL_STATUS_READ_FAILED.
void tla_read_header(const scl::Scl_buffer& file, std::u16string_view file_name,
                     bool accept_any_version, Tla_data_set_header& header, scl::Scl_status& status);

// The header end, where the first record begins: it follows from the fields alone.
[[nodiscard]] std::uint64_t tla_header_end(std::span<const Field_descriptor> fields);

// What tla_write_header() has to know besides the fields.
struct Tla_header_counts {
    std::uint16_t keys;
    std::uint32_t records;
    std::uint64_t records_size; // bytes of the records section

    // Beyond these a file would hold a wrapped number, and a reader would take it for a small file.
    [[nodiscard]] static constexpr bool can_hold(std::uint64_t keys, std::uint64_t records) {
        return keys <= std::numeric_limits<std::uint16_t>::max() &&
               records <= std::numeric_limits<std::uint32_t>::max();
    }
};

// Writes header, field list and padding to the front of a file, with 0 for the checksum, which can
// only be known last. Returns the header end. Codes are those of writing to `out`.
[[nodiscard]] std::uint64_t tla_write_header(std::span<const Field_descriptor> fields,
                                             const Tla_header_counts& counts, scl::Scl_ostream& out,
                                             scl::Scl_status& status);

} // namespace tla
