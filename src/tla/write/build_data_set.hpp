#pragma once

#include "records/input/tla_record_reader.hpp"
#include "records/values/field_descriptor.hpp"
#include "scl/io/scl_file_buffer.hpp"

#include <cstdint>
#include <span>
#include <string>

namespace tla {

// What a data set is made of, besides its records.
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

// Makes a data set file of the lines of an input. `scratch`, empty and writable, gets the records
// section first. Nothing is owned, and all buffers stay open: close `output` to know that its bytes
// have reached the file.
//
// Codes are those of Tla_record_reader::read_records and of write_data_set_file. After an error in
// the input, which the result tells, `output` is empty. Throws std::runtime_error for a value of
// more than 15,000,000 tokens.
[[nodiscard]] Tla_build_result build_data_set(const Tla_build_plan& plan,
                                              scl::Scl_buffered_istream& in,
                                              scl::Scl_buffer& scratch, scl::Scl_buffer& output,
                                              scl::Scl_status& status);

} // namespace tla
