#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tla {

// Where a block of a key table begins, and with which hash.
struct Index_sample {
    std::uint64_t first_hash;
    std::uint64_t offset; // of the block's first pair, in bytes from the start of the file
};
static_assert(sizeof(Index_sample) == 16);

// Whether the hashes of a block ascend. They do in a proper file; the first lookup in a block sees.
enum class Block_order : std::uint8_t { unknown, ascending, mixed };

// What is kept of a key table in memory.
struct Key_index {
    std::u16string name;               // of the key field
    std::vector<Index_sample> samples; // in file order
    std::vector<Block_order> orders;   // one a sample
};

} // namespace tla
