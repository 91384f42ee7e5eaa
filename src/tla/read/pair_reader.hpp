#pragma once

#include "scl/io/scl_buffered_istream.hpp"
#include "tla/read/key_index.hpp"

#include <cstdint>
#include <vector>

namespace tla {

// Reads the pairs of a file's key tables, each a key hash and then a record's offset, 64 bits both.
// Kept from one lookup to the next, for its buffer. All operations leave SCL_STATUS_READ_FAILED as
// the file reports it. Where the file ends, read_hash and read_offset set SCL_STATUS_END_OF_DATA,
// and leave their argument alone; the others make do with the pairs there are.
class Pair_reader {
public:
    // The file must outlive the reader.
    explicit Pair_reader(const scl::Scl_buffer& file);

    // The pair of the block from which on one may have the hash. In a block whose hashes ascend it
    // is the first that has it, or the block's pair count; 0, which says nothing, in another, and
    // when it cannot be read. `order` is the block's as far as it is known; an unknown one is made
    // known.
    [[nodiscard]] std::uint32_t first_candidate(const Key_block& block, std::uint64_t hash,
                                                Block_order& order, scl::Scl_status& status);
    // Adds the offsets of up to `count` pairs from a place in the file on.
    void append_offsets(std::uint64_t place, std::uint32_t count,
                        std::vector<std::int64_t>& offsets, scl::Scl_status& status);

    void go_to(std::uint64_t place) { stream_.set_position(place); }
    // Steps over pairs that have another hash, `most` at most, and returns their number.
    [[nodiscard]] std::uint32_t skip_others(std::uint64_t hash, std::uint32_t most,
                                            scl::Scl_status& status);
    void read_hash(std::uint64_t& hash, scl::Scl_status& status) { stream_.read_le(hash, status); }
    void read_offset(std::int64_t& offset, scl::Scl_status& status) {
        stream_.read_le(offset, status);
    }
    // Over half a pair.
    void skip_word() { stream_.set_position(stream_.tell() + sizeof(std::uint64_t)); }

private:
    [[nodiscard]] bool ascends(const Key_block& block, scl::Scl_status& status);
    [[nodiscard]] std::uint32_t first_with(const Key_block& block, std::uint64_t hash,
                                           scl::Scl_status& status);
    [[nodiscard]] std::span<const std::byte> whole_pairs(std::uint32_t most,
                                                         scl::Scl_status& status);

    scl::Scl_buffered_istream stream_;
};

} // namespace tla
