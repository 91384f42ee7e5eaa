#pragma once

#include <cstdint>

namespace tla {

// Names a formatter type: 16 bytes in GUID layout, as two little-endian halves. All zero stands
// for a type that nobody knows.
struct Formatter_type_id {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    [[nodiscard]] bool operator==(const Formatter_type_id&) const = default;
};

} // namespace tla
