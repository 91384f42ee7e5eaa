#pragma once

#include "records/values/field_descriptor.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

// Records as texts, one a field, in file order.
using Rows = std::vector<std::vector<std::string>>;

// The key hash that a key field's text goes by. Version 1 leaves it to whoever makes the file.
using Key_hash = std::function<std::uint64_t(std::string_view)>;

// The usual choice: FNV-1a.
[[nodiscard]] std::uint64_t fnv1a(std::string_view text);

// The bytes of a data set file of version 1. Texts are stored as they stand, untrimmed and perhaps
// empty; they hold neither LF nor NUL. Throws std::invalid_argument for a key that is no field and
// for a row that has more or fewer texts than there are fields.
[[nodiscard]] std::string make_version1_file(const std::vector<tla::Field_descriptor>& fields,
                                             const std::vector<std::string>& key_names,
                                             const Rows& rows, const Key_hash& hash = fnv1a);

} // namespace tools
