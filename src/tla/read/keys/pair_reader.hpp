#pragma once

#include "scl/io/scl_buffered_istream.hpp"
#include "tla/read/keys/key_index.hpp"

#include <cstdint>
#include <span>
#include <vector>

namespace tla {

// Reads the pairs of a file's key tables. A pair is a key hash and a record's offset,
// little-endian:
//
//     +-- ... --+-- ... --+
//     |  hash   | offset  |   8 bytes each
//     +-- ... --+-- ... --+
//
// Keep one for many lookups: it reuses its buffer. All operations leave SCL_STATUS_READ_FAILED as
// the file reports it. At the end of the file read_hash and read_offset set SCL_STATUS_END_OF_DATA
// and leave their argument alone; the others use the pairs that are there.
class Pair_reader {
public:
    // The file must outlive the reader.
    explicit Pair_reader(const scl::Scl_buffer& file);

    // Whether the hashes of a block ascend. Reads the block the first time it is asked for, and
    // keeps the answer in the index; false after a failure.
    [[nodiscard]] bool ascends(Key_index& index, std::size_t block_index, scl::Scl_status& status);
    // Index in the block of the first pair that has the hash, or the block's pair count when none
    // has; 0 after a failure. Where the hashes do not ascend it is found in `index.by_hash`.
    [[nodiscard]] std::uint32_t first_with(Key_index& index, std::size_t block_index,
                                           std::uint64_t hash, scl::Scl_status& status);
    // All pairs of the table that have the hash, in its order. Fills `index.by_hash`: for tables
    // that are not sorted.
    [[nodiscard]] std::span<const Hash_index> all_with(Key_index& index, std::uint64_t hash,
                                                       scl::Scl_status& status);
    // Adds the record offsets of up to `count` pairs; the first pair is at `pair_offset` in the
    // file.
    void append_offsets(std::uint64_t pair_offset, std::uint32_t count,
                        std::vector<std::int64_t>& offsets, scl::Scl_status& status);

    void go_to(std::uint64_t pair_offset) { stream_.set_position(pair_offset); }
    // Skips pairs until one has the hash, at most `most`. Returns how many were skipped.
    [[nodiscard]] std::uint32_t skip_others(std::uint64_t hash, std::uint32_t most,
                                            scl::Scl_status& status);
    void read_hash(std::uint64_t& hash, scl::Scl_status& status) { stream_.read_le(hash, status); }
    void read_offset(std::int64_t& offset, scl::Scl_status& status) {
        stream_.read_le(offset, status);
    }
    // Skips half a pair.
    void skip_word() { stream_.set_position(stream_.tell() + sizeof(std::uint64_t)); }

private:
    [[nodiscard]] bool ascends(const Key_block& block, scl::Scl_status& status);
    [[nodiscard]] std::uint32_t search(const Key_block& block, std::uint64_t hash,
                                       scl::Scl_status& status);
    void order_pairs(Key_index& index, scl::Scl_status& status);
    [[nodiscard]] std::span<const std::byte> whole_pairs(std::uint32_t most,
                                                         scl::Scl_status& status);

    scl::Scl_buffered_istream stream_;
};

} // namespace tla
