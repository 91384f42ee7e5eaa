#pragma once

#include "scl/io/scl_ostream.hpp"
#include "tla/write/key_pairs.hpp"
#include "tla/write/record_comparer.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tla {

// The records, in the scratch file, for which key tables are made.
struct Recorded {
    const scl::Scl_buffer& records;
    std::size_t field_count;
    std::uint64_t count;
    std::uint64_t header_end; // where the first record begins in the file
};

// Reads all records once and adds the pairs of the column `key_field` to `pairs`, which must be
// empty. Leaves TLA_STATUS_RECORD_END when a record does not end with 0x00,
// SCL_STATUS_END_OF_DATA when there are fewer than `count`, and SCL_STATUS_READ_FAILED.
void read_key_pairs(std::size_t key_field, const Recorded& recorded, Key_pairs& pairs,
                    scl::Scl_status& status);

// Writes the key's name, a zero byte and zeros up to a multiple of eight.
void write_key_name(std::u16string_view key_name, scl::Scl_ostream& out, scl::Scl_status& status);

// Writes the pairs in the order of their hashes. A pair is left out when the pair written before it
// has the same hash and their records are equal in all fields; each pushes the warning
// TLA_STATUS_DUPLICATE_LEFT_OUT. Other codes are those of reading the records and of writing.
void write_key_pairs(Key_pairs& pairs, const Recorded& recorded, scl::Scl_ostream& out,
                     scl::Scl_status& status);

} // namespace tla
