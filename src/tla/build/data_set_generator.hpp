#pragma once

#include "records/field_descriptor.hpp"
#include "scl/io/scl_buffered_istream.hpp"
#include "scl/io/scl_ostream.hpp"

#include <cstdint>
#include <span>
#include <string>

namespace tla {

// Makes a data set file of version 2 from records in the layout of its records section. `records`
// is copied as it stands; the key tables are made by reading it, 16 bytes of memory a record.
// Everything is borrowed for the call and stays open; `output` is written from its front on.
//
// Sets TLA_STATUS_FIELD_LIST when two fields share a name, TLA_STATUS_KEY_NAME when a key name is
// no field's (capitals count), TLA_STATUS_RECORD_END when a record does not end with 0x00; pushes
// the warning TLA_STATUS_DUPLICATE_LEFT_OUT for each pair left out of a key table. After an error
// the output is unfinished and its checksum wrong.
void write_data_set_file(std::span<const std::u16string> key_names,
                         std::span<const Field_descriptor> schema, const scl::Scl_buffer& records,
                         scl::Scl_buffer& output, scl::Scl_status& status);

// The number of complete records from the stream's position to its end. One that lacks only its
// closing byte counts; one cut short before that does not.
[[nodiscard]] std::uint32_t
count_records(std::size_t field_count, scl::Scl_buffered_istream& records, scl::Scl_status& status);

} // namespace tla
