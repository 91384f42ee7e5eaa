#pragma once

#include <cstddef>
#include <limits>
#include <vector>

namespace tla {

// The position of each field among the keys, NO_KEY of one that is none.
using Key_order = std::vector<std::size_t>;
inline constexpr std::size_t NO_KEY = std::numeric_limits<std::size_t>::max();

} // namespace tla
