#pragma once

#include "tla/sort/pair_cells.hpp"

#include <span>

namespace tla {

// Sorts pairs by hash, equal ones in the order they came in, when their top `equal_bits` hash bits
// are the same in all of them. `spare` has room for as many pairs and is overwritten.
void radix_sort(std::span<Index_pair> pairs, std::span<Index_pair> spare, unsigned equal_bits);

} // namespace tla
