#pragma once

#include "records/values/field_descriptor.hpp"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace driver {

// A schema in column order, as two lists of the same length.
struct Schema {
    std::vector<tla::Field_descriptor> fields;
    std::vector<tla::Formatter_type_id> types;
};

// Adds the fields of "FirstName,Simple;Surname,SimpleNC" to `schema`. False when a piece between
// semicolons does not have an even number of comma pieces, or none; what stood before it stays
// added. A type name that nobody knows is no fault: it gives the all-zero identifier.
[[nodiscard]] bool parse_schema(std::string_view text, Schema& schema);

// Adds the column of each key name that is a field's, whatever its letter case, to `positions`.
void resolve_keys(std::span<const tla::Field_descriptor> fields,
                  std::span<const std::u16string> key_names, std::vector<std::uint64_t>& positions);

} // namespace driver
