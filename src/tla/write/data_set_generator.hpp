#pragma once

#include "records/input/tla_record_processor.hpp"
#include "records/values/field_descriptor.hpp"
#include "scl/io/scl_buffered_istream.hpp"
#include "scl/io/scl_ostream.hpp"

#include <cstdint>
#include <span>
#include <string>

namespace tla {

class Record_collector;
class Record_file;
class Tla_header_writer;

// What a build already knows when all records are made.
struct Records_made {
    Record_collector& collector; // their number, and the pairs of the first key
    Record_file& file;           // the scratch file, and whether the output has the records, too
};

// Writes a data set file of version 2. `records` has the records as the file will have them, and is
// copied. Each key table takes a pass over it and 16 bytes of memory a record. With `made`, which
// may be null, the copy and the first key's pass are not done again. Nothing is owned, and buffers
// stay open. Returns the record count that stands in the header.
//
// Sets TLA_STATUS_FIELD_LIST when two fields share a name, TLA_STATUS_TOO_MANY_PAIRS for more keys
// or records than a header can count, TLA_STATUS_KEY_NAME when a key name is no field's (capitals
// count), TLA_STATUS_RECORD_END when a record does not end with 0x00; leaves what reading and
// writing leave; pushes the warning TLA_STATUS_DUPLICATE_LEFT_OUT for each pair left out of a key
// table. After an error the output is unfinished and its checksum wrong.
std::uint64_t write_data_set_file(std::span<const std::u16string> key_names,
                                  const Tla_header_writer& header, const scl::Scl_buffer& records,
                                  const Records_made* made, scl::Scl_buffer& output,
                                  scl::Scl_status& status);

// Pushes the warning TLA_STATUS_COUNT_WRAPPED, with how many records there are and the first one's
// number as its argument, unless there are none. Chosen token values can make such a record swallow
// the next one and still leave the number of records right, so nothing else tells of it.
void tla_warn_of_wrapped_records(const Tla_wrapped_records& wrapped, scl::Scl_status& status);

// Pushes the warning TLA_STATUS_RECORDS_LOST, with both numbers as its argument, unless they are
// equal. `readable` is the record count of a file that was made, `taken` how many records went in.
void tla_warn_of_lost_records(std::uint64_t readable, std::uint64_t taken, scl::Scl_status& status);

// The number of complete records from the stream's position to its end. One that lacks only its
// closing byte counts; one cut short before that does not. The end of the data is cleared from the
// status; TLA_STATUS_RECORD_END and SCL_STATUS_READ_FAILED stay, and the number is of no use then.
[[nodiscard]] std::uint64_t
count_records(std::size_t field_count, scl::Scl_buffered_istream& records, scl::Scl_status& status);

} // namespace tla
