#pragma once

#include "records/values/field_descriptor.hpp"
#include "tla/format/data_set_version.hpp"

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace scl {
class Scl_buffer;
class Scl_status;
} // namespace scl

namespace tla {

// What the front of a data set file says, unchecked but for its form. Offsets in bytes from the
// start of the file.
struct Tla_data_set_header {
    std::uint64_t stored_checksum = 0;
    std::uint64_t key_table_offset = 0; // of the first key table
    std::uint64_t data_start = 0;       // of the first record
    std::array<std::uint8_t, 2> raw_version{};
    std::uint16_t key_count = 0;
    std::uint32_t record_count = 0;
    std::uint64_t field_count = 0; // of the field list

    // The second byte says nothing.
    [[nodiscard]] Tla_data_set_version version() const {
        return tla_data_set_version(raw_version.front());
    }
};

// Reads the header from the front of a file, all but its fields: those are counted. What is read
// replaces what is in `header`; after a failure it keeps what was read before.
//
// Pushes TLA_STATUS_NO_DATA_SET, with `file_name`, for another magic, and replaces the end of the
// data by it; pushes TLA_STATUS_VERSION, with `file_name`, for a version that is not
// current, unless any will do; sets TLA_STATUS_FIELD_LIST for a malformed field list. A file that
// cannot be read leaves SCL_STATUS_READ_FAILED.
void tla_read_header(const scl::Scl_buffer& file, std::u16string_view file_name,
                     bool accept_any_version, Tla_data_set_header& header, scl::Scl_status& status);

// Adds the fields to `fields`, when the header and the checksum were found right. A file that was
// changed since then leaves the same codes.
void tla_read_fields(const scl::Scl_buffer& file, std::u16string_view file_name,
                     const Tla_data_set_header& header, std::vector<Field_descriptor>& fields,
                     scl::Scl_status& status);

} // namespace tla
