#pragma once

#include "records/input/tla_record_reader.hpp"
#include "records/values/field_descriptor.hpp"
#include "scl/io/scl_file_buffer.hpp"

#include <cstdint>
#include <span>
#include <string>

namespace tla {

// What a data set is made by.
struct Tla_build_plan {
    std::span<const Field_descriptor> fields;     // the columns of the input
    std::span<const std::u16string> key_names;    // at least one; written as the fields' names are
    std::span<const std::uint64_t> key_positions; // columns that may not be empty
};

struct Tla_build_result {
    Tla_read_result reading = Tla_read_result::finished;
    std::uint64_t line_count = 0;   // of the lines that were made into records
    std::uint64_t record_count = 0; // of the file: fewer when not all of them can be read again
    Tla_wrapped_records wrapped;    // by the numbers of those lines
};

// Makes a data set file of the lines of an input. `scratch`, empty and writable, holds the records
// meanwhile. All are borrowed for the call and stay open; what is written may not have reached
// `output`'s file before that is closed.
//
// Codes are those of Tla_record_reader::read_records and of write_data_set_file; after an input
// error, told by the result, nothing is written to `output`. Throws std::runtime_error for a value
// of more tokens than there may be.
[[nodiscard]] Tla_build_result build_data_set(const Tla_build_plan& plan,
                                              scl::Scl_buffered_istream& in,
                                              scl::Scl_buffer& scratch, scl::Scl_buffer& output,
                                              scl::Scl_status& status);

} // namespace tla
