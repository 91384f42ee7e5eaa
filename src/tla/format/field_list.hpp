#pragma once

#include "records/values/field_descriptor.hpp"
#include "scl/io/scl_buffered_istream.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tla {

// The field list of a data set file, here of two fields:
//
//     | FirstName \n Simple \0 | Surname \n SimpleNC \0 | \0 |
//
// A name may hold \n: the last one before the \0 separates it from the type's name.

// Returns how many fields a file's field list has, and keeps nothing of it: the memory that fields
// take is many times the list's, and a list is to be believed only when the file's checksum is
// right. The stream, attached with this status, stands at the list's front and is left behind its
// closing byte. A field whose two names are empty ends the list when it is not the first. Sets
// TLA_STATUS_FIELD_LIST for a list that is empty or a field without 0x0A; leaves
// SCL_STATUS_END_OF_DATA and SCL_STATUS_READ_FAILED as the stream reports them.
[[nodiscard]] std::size_t tla_count_fields(scl::Scl_buffered_istream& in, scl::Scl_status& status);

// Adds those fields to `fields`, without spare room. Codes as above.
void tla_read_field_list(scl::Scl_buffered_istream& in, std::size_t count,
                         std::vector<Field_descriptor>& fields, scl::Scl_status& status);

// The list's bytes, the closing one included.
[[nodiscard]] std::string tla_field_list_of(std::span<const Field_descriptor> fields);

// The fields' indexes, ordered by name, byte for byte, then by index. Sorted rather than hashed:
// who makes a file chooses its names, and could choose names of equal hash.
[[nodiscard]] std::vector<std::uint32_t>
tla_order_by_name(std::span<const Field_descriptor> fields);

// Whether no two fields share a name, byte for byte. What is written must be so, as a key table
// names its field; a reader takes the first field of a name.
[[nodiscard]] bool tla_names_are_unique(std::span<const Field_descriptor> fields);

} // namespace tla
