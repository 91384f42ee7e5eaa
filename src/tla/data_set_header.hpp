#pragma once

#include "records/field_descriptor.hpp"

#include <array>
#include <cstdint>
#include <vector>

namespace tla {

// What the front of a data set file says. Offsets in bytes from the start of the file.
struct Data_set_header {
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

} // namespace tla
