#include "tla/read/sorted_block.hpp"

#include "scl/io/scl_endian.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <span>

namespace tla {

namespace {

constexpr std::uint32_t LOOK_PAIRS = 256; // four times as many as a good guess is wrong by

std::uint64_t hash_at(std::span<const std::byte> pairs, std::size_t index) {
    return scl::scl_load_le<std::uint64_t>(&pairs[index * TLA_INDEX_PAIR_BYTES]);
}

bool ascends(const Sorted_block& block, scl::Scl_buffered_istream& pairs, scl::Scl_status& status) {
    pairs.set_position(block.offset);
    std::uint64_t last = 0;
    for (std::uint32_t left = block.pair_count; left > 0;) {
        const auto window = pairs.window(TLA_INDEX_PAIR_BYTES, status);
        const std::size_t count = std::min<std::size_t>(left, window.size() / TLA_INDEX_PAIR_BYTES);
        if (count == 0) return false; // the file ends
        for (std::size_t i = 0; i < count; ++i) {
            if (hash_at(window, i) < last) return false;
            last = hash_at(window, i);
        }
        pairs.skip(count * TLA_INDEX_PAIR_BYTES);
        left -= static_cast<std::uint32_t>(count);
    }
    return true;
}

// The pair to look around.
std::uint32_t guess(const Sorted_block& block, std::uint64_t hash) {
    const auto range = static_cast<double>(block.next_hash - block.first_hash);
    const auto part = static_cast<double>(hash - block.first_hash);
    return static_cast<std::uint32_t>(part / std::max(range, 1.0) * block.pair_count);
}

} // namespace

std::uint32_t first_candidate(const Sorted_block& block, std::uint64_t hash, Block_order& order,
                              scl::Scl_buffered_istream& pairs, scl::Scl_status& status) {
    pairs.limit_read_ahead(scl::Scl_buffered_istream::WINDOW_BYTES);
    if (order == Block_order::unknown) {
        order = ascends(block, pairs, status) ? Block_order::ascending : Block_order::mixed;
    }
    if (order == Block_order::mixed || block.pair_count <= LOOK_PAIRS) return 0;
    const std::uint32_t middle =
        std::clamp(guess(block, hash), LOOK_PAIRS / 2, block.pair_count - LOOK_PAIRS / 2);
    const std::uint32_t begin = middle - LOOK_PAIRS / 2;
    pairs.set_position(block.offset + begin * TLA_INDEX_PAIR_BYTES);
    pairs.limit_read_ahead(LOOK_PAIRS * TLA_INDEX_PAIR_BYTES);
    const auto window = pairs.window(LOOK_PAIRS * TLA_INDEX_PAIR_BYTES, status);
    pairs.limit_read_ahead(scl::Scl_buffered_istream::WINDOW_BYTES);
    if (window.size() < LOOK_PAIRS * TLA_INDEX_PAIR_BYTES) return 0;
    std::uint32_t below = 0;
    for (std::uint32_t i = 0; i < LOOK_PAIRS; ++i) {
        below += hash_at(window, i) < hash ? 1 : 0;
    }
    const bool begins_here = below > 0 || begin == 0;
    if (!begins_here || (below == LOOK_PAIRS && begin + below < block.pair_count)) return 0;
    const bool is_there = below < LOOK_PAIRS && hash_at(window, below) == hash;
    return is_there ? begin + below : block.pair_count;
}

} // namespace tla
