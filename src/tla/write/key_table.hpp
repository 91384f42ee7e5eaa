#pragma once

#include "scl/io/scl_ostream.hpp"
#include "tla/write/key_pairs.hpp"
#include "tla/write/record_comparer.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tla {

// The records that a key table is made for, as the scratch file holds them.
struct Recorded {
    const scl::Scl_buffer& records;
    std::size_t field_count;
    std::uint64_t count;
    std::uint64_t header_end; // where the first record begins in the file
};

// Reads the pairs of a key, whose column is `key_field`, in one pass over the records, into
// `pairs`, which holds none. Leaves TLA_STATUS_RECORD_END when a record does not end with 0x00,
// SCL_STATUS_END_OF_DATA when there are fewer than `count`, and SCL_STATUS_READ_FAILED.
void read_key_pairs(std::size_t key_field, const Recorded& recorded, Key_pairs& pairs,
                    scl::Scl_status& status);

// Writes the key's name, a zero byte and zeros up to a multiple of eight.
void write_key_name(std::u16string_view key_name, scl::Scl_ostream& out, scl::Scl_status& status);

// Writes the pairs by hash and leaves out each whose record equals, in all fields, that of the pair
// written before it with the same hash; every one left out pushes TLA_STATUS_DUPLICATE_LEFT_OUT.
// Leaves what reading the records and writing leave.
void write_key_pairs(Key_pairs& pairs, const Recorded& recorded, scl::Scl_ostream& out,
                     scl::Scl_status& status);

} // namespace tla
