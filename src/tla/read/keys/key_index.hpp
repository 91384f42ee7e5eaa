#pragma once

#include "scl/io/scl_buffered_istream.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace tla {

// How many pairs of a key table share one sample of the index in memory: the first of four sizes
// that keeps the samples near 16,384, or, for the last size, near 32,768; 0 when none does. The
// product of the two counts wraps at 32 bits; what a file so finds its samples by can never change.
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

// Whether the hashes of a block ascend. In a proper file they do, but the checksum does not say
// that a file is proper, and loading does not read the pairs between the samples.
enum class Block_order : std::uint8_t { unknown, ascending, mixed };

// A block of a key table.
struct Key_block {
    std::uint64_t offset; // in bytes from the start of the file
    std::uint32_t pair_count;
    std::uint64_t first_hash;
    std::uint64_t next_hash; // the next block's first, all ones when there is none
};

// Places of neighbouring blocks in a key table, from `begin` up to `end`.
struct Block_range {
    std::size_t begin;
    std::size_t end;
};

// What is kept of a key table in memory.
struct Key_index {
    std::u16string name;               // of the key field
    std::vector<Index_sample> samples; // in file order
    std::vector<Block_order> orders;   // of the blocks, as far as lookups have seen them
    std::uint32_t block_size = 0;      // in pairs
    std::uint32_t pair_count = 0;      // whole pairs, as far as the file has them
    bool samples_ascend = true;        // not so in a crafted file only

    // The place among the samples of the block that a lookup begins with: the first one that begins
    // with the hash or below it, and whose next one, if there is one, begins above it. The number
    // of samples when there is none.
    [[nodiscard]] std::size_t place_of(std::uint64_t hash) const;
    // The blocks that can have pairs with the hash, by the hashes that they begin with; all of them
    // where these do not ascend.
    [[nodiscard]] Block_range blocks_with(std::uint64_t hash) const;
    [[nodiscard]] Key_block block_at(std::size_t place) const;
};

// Reads a key table's name and the first pair of each of its blocks, and leaves the stream, which
// is attached with this status, where the next table would begin if this one had `record_count`
// pairs. A table has fewer when equal records were left out of it. Where the data ends among the
// pairs, the table ends, too: that is no failure, and the position is then there or farther on.
// Before the pairs, the end of the data sets SCL_STATUS_END_OF_DATA; a file that cannot be read
// leaves SCL_STATUS_READ_FAILED.
[[nodiscard]] Key_index read_key_index(scl::Scl_buffered_istream& in, std::uint32_t record_count,
                                       std::uint32_t block_size, scl::Scl_status& status);

} // namespace tla
