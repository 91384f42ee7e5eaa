#include "tla/scan/pair_table.hpp"

#include <algorithm>

namespace tla {

namespace {

// Of all buckets together. A slot for eight pairs takes half a byte a pair; each bucket has one
// slot that is not full, and the number of its slots.
std::uint64_t bytes_for(std::uint64_t pairs, std::size_t buckets, std::size_t pair_size) {
    return pairs * pair_size + pairs / 2 + buckets * 2 * sizeof(std::uint32_t);
}

} // namespace

// Memory that is not filled is not touched, so a bound that is too high costs addresses alone.
Pair_table::Pair_table(std::uint64_t most_pairs, std::size_t buckets, std::uint64_t limit,
                       std::uint64_t most_bytes)
    : format_(limit),
      starts_(buckets, false),
      memory_(static_cast<std::size_t>(
                  std::min(bytes_for(most_pairs, buckets, format_.size()), most_bytes)),
              false) {}

} // namespace tla
