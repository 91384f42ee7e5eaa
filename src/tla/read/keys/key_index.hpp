#pragma once

#include "scl/io/scl_buffered_istream.hpp"

#include <compare>
#include <cstdint>
#include <string>
#include <vector>

// The index of a key table that is kept in memory. A key table lies in the file as pairs of key
// hash and record offset, sorted by hash. It is cut into blocks of equal size, and the index keeps
// a sample of each block, its first hash:
//
//     in memory   sample 0         sample 1         sample 2
//                    |                |                |
//     in the file | block 0         | block 1        | block 2 ... |
//
// A lookup finds the block by the samples and reads only there.

namespace tla {

// How many pairs of a key table share one sample: the first of four sizes that keeps the samples of
// all tables near 16,384, or, for the last size, near 32,768; 0 when none does. The product wraps
// at 32 bits; the rule of docs/reading.md depends on it, and with it what lookups find in existing
// files.
[[nodiscard]] constexpr std::uint32_t index_block_size(std::uint32_t record_count,
                                                       std::uint16_t key_count) {
    constexpr std::uint32_t MOST_SAMPLES = 16384;
    const std::uint32_t pairs = record_count * key_count;
    if (pairs / 4096 <= MOST_SAMPLES) return 4096;
    if (pairs / 8192 <= MOST_SAMPLES) return 8192;
    if (pairs / 12288 <= MOST_SAMPLES) return 12288;
    if (pairs / 16384 <= 2 * MOST_SAMPLES) return 16384;
    return 0;
}

// Where a block of a key table begins, and with which hash.
struct Index_sample {
    std::uint64_t first_hash;
    std::uint64_t offset; // of the block's first pair, in bytes from the start of the file
};
static_assert(sizeof(Index_sample) == 16);

// Whether the hashes of a block ascend. They do in every file that a build made, but a crafted file
// can have a right checksum and mixed pairs, and loading reads only the samples.
enum class Block_order : std::uint8_t { unknown, ascending, mixed };

// A pair's hash, and its index in the table. Ordered by hash, then by index.
struct Hash_index {
    std::uint64_t hash;
    std::uint32_t index;

    // NOLINTNEXTLINE(modernize-use-nullptr): no pointer
    [[nodiscard]] auto operator<=>(const Hash_index&) const = default;
};

// A block of a key table.
struct Key_block {
    std::uint64_t offset; // of its first pair, in bytes from the start of the file
    std::uint32_t pair_count;
    std::uint64_t first_hash;
    std::uint64_t next_hash; // the next block's first, all ones when there is none
};

// Indexes of neighbouring blocks of a key table, from `begin` up to `end`.
struct Block_range {
    std::size_t begin;
    std::size_t end;
};

// One key table's index. Blocks are counted from 0, in file order.
struct Key_index {
    std::u16string name;               // of the key field
    std::vector<Index_sample> samples; // one a block
    std::vector<Block_order> orders;   // one a block, as far as lookups have seen them
    std::uint32_t block_size = 0;      // in pairs
    std::uint32_t pair_count = 0;      // whole pairs, as far as the file has them
    bool samples_ascend = true;        // false in a crafted file, mostly: see docs/reading.md
    // Every pair, ordered, from the first lookup on that meets a block whose pairs do not ascend.
    // As large as the table, which is then read no more than this once.
    std::vector<Hash_index> by_hash;

    // The block that a lookup begins with: the first that begins with the hash or below it and
    // whose successor, if there is one, begins above it. The number of blocks when there is none.
    [[nodiscard]] std::size_t block_index_of(std::uint64_t hash) const;
    // The blocks that can have pairs with the hash, judged by the samples, which must ascend.
    [[nodiscard]] Block_range blocks_with(std::uint64_t hash) const;
    [[nodiscard]] Key_block block_at(std::size_t block_index) const;
};

// Reads a key table's name and the first hash of each block. The stream, attached with this status,
// is left where the next table begins if this one has `record_count` pairs; it has fewer when equal
// records were left out of it. Where the data ends among the pairs, the table ends too: that is no
// failure, and the position is then at the end of the data or behind it.
//
// Before the pairs, the end of the data sets SCL_STATUS_END_OF_DATA; a file that cannot be read
// leaves SCL_STATUS_READ_FAILED.
[[nodiscard]] Key_index read_key_index(scl::Scl_buffered_istream& in, std::uint32_t record_count,
                                       std::uint32_t block_size, scl::Scl_status& status);

} // namespace tla
