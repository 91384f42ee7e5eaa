#pragma once

#include "scl/io/scl_buffered_istream.hpp"
#include "tla/read/key_index.hpp"

#include <cstdint>

namespace tla {

// A block of a key table, which ought to be sorted.
struct Sorted_block {
    std::uint64_t offset; // in bytes from the start of the file
    std::uint32_t pair_count;
    std::uint64_t first_hash;
    std::uint64_t next_hash; // the next block's first, all ones when there is none
};

// The index of a pair before which no pair of the block has the hash: the first one that has it,
// pair_count when none does, or just 0 when that cannot be told with one small read. Hashes are
// spread evenly, so their place in a sorted block can be guessed well.
//
// `order` tells whether the block is sorted; when it is not known yet, the block is read and it
// becomes so. A failed read is left in the status.
[[nodiscard]] std::uint32_t first_candidate(const Sorted_block& block, std::uint64_t hash,
                                            Block_order& order, scl::Scl_buffered_istream& pairs,
                                            scl::Scl_status& status);

} // namespace tla
