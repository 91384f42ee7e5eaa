#pragma once

#include "tla/sort/pair_pages.hpp"

#include <span>

namespace tla {

// Sorts pairs by hash; equal hashes keep their order. All pairs agree in the top `prefix_bits` bits
// of their hash. `spare` has at least as many pairs as `pairs` and is overwritten.
void radix_sort(std::span<Index_pair> pairs, std::span<Index_pair> spare, unsigned prefix_bits);

} // namespace tla
