#pragma once

#include "records/formatter_type_id.hpp"

#include <string>

namespace tla {

// A field of a schema, the same on the command line, in memory and in a file's field list.
struct Field_descriptor {
    std::u16string name;
    Formatter_type_id type;
};

} // namespace tla
