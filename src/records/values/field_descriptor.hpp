#pragma once

#include <cstdint>
#include <string>

#pragma GCC visibility push(default) // installed

namespace tla {

// Names a formatter type: 16 bytes in GUID layout, as two little-endian halves. All zero stands
// for a type that nobody knows.
struct Formatter_type_id {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    [[nodiscard]] bool operator==(const Formatter_type_id&) const = default;
};

// A field of a schema, the same on the command line, in memory and in a file's field list.
struct Field_descriptor {
    std::u16string name;
    Formatter_type_id type;
};

} // namespace tla

#pragma GCC visibility pop
