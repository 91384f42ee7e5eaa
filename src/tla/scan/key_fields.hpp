#pragma once

#include "tla/format/data_set_header.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace scl {
class Scl_status;
} // namespace scl

namespace tla {

// The fields of those names, as indexes into `fields`, each once. Pushes
// TLA_STATUS_KEY_NAME with a name that no field has.
[[nodiscard]] std::vector<std::size_t> fields_of_names(std::span<const Field_descriptor> fields,
                                                       std::span<const std::u16string> names,
                                                       scl::Scl_status& status);

// The fields that have a key table in the file, in the tables' order. A table does not say how many
// pairs it has: as many as there are records, unless equal records were left out of it. Then it
// ends before a hash that is lower than the one before, or at an offset where no record begins:
// the next table's name takes that place. Pushes SCL_STATUS_END_OF_DATA when the tables do not lie
// in the file, and TLA_STATUS_NO_DATA_SET, without an argument, for a name that no field has.
[[nodiscard]] std::vector<std::size_t>
fields_of_key_tables(const Tla_data_set_header& header, std::span<const Field_descriptor> fields,
                     std::span<const std::byte> file, scl::Scl_status& status);

} // namespace tla
