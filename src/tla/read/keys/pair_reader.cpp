#include "tla/read/keys/pair_reader.hpp"

#include "scl/io/scl_endian.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tla {

namespace {

constexpr std::uint32_t WINDOW_PAIRS =
    scl::Scl_buffered_istream::WINDOW_BYTES / TLA_INDEX_PAIR_BYTES;
// More than most values have. A larger read would mostly copy bytes that nobody looks at.
constexpr std::uint32_t FEW_PAIRS = 128;

// The two halves of a pair, wherever the window of bytes begins: loads need no alignment.
std::uint64_t hash_at(std::span<const std::byte> pairs, std::size_t index) {
    return scl::scl_load_le<std::uint64_t>(&pairs[index * TLA_INDEX_PAIR_BYTES]);
}

std::int64_t offset_at(std::span<const std::byte> pairs, std::size_t index) {
    return scl::scl_load_le<std::int64_t>(
        &pairs[index * TLA_INDEX_PAIR_BYTES + sizeof(std::uint64_t)]);
}

std::size_t count_of(std::span<const std::byte> pairs) {
    return pairs.size() / TLA_INDEX_PAIR_BYTES;
}

// How many of the pairs have a lower hash; their hashes ascend. A binary search touches a few cache
// lines, a scan would touch all.
std::uint32_t count_below(std::span<const std::byte> pairs, std::uint64_t hash) {
    std::size_t begin = 0;
    std::size_t end = count_of(pairs);
    while (begin < end) {
        const std::size_t middle = begin + (end - begin) / 2;
        if (hash_at(pairs, middle) < hash) {
            begin = middle + 1;
        } else {
            end = middle;
        }
    }
    return static_cast<std::uint32_t>(begin);
}

// Guesses the index of a hash in its block. Hashes are checksums and so spread evenly: one that is
// a third of the way from the first hash to the next block's stands near a third of the pairs.
std::uint32_t guess(const Key_block& block, std::uint64_t hash) {
    // In a crafted file the next block may begin lower, and the hash may lie outside both.
    const std::uint64_t end = std::max({block.next_hash, block.first_hash, hash});
    const auto range = static_cast<double>(end - block.first_hash);
    const auto part = static_cast<double>(hash - std::min(block.first_hash, hash));
    return static_cast<std::uint32_t>(std::min(part / std::max(range, 1.0), 1.0) *
                                      block.pair_count);
}

// How many pairs to read around a guess. The standard deviation of the guess is at most half the
// root of the pair count. Two of them on either side miss one time in forty; a wider read would
// cost more in copying than those second looks do.
std::uint32_t look_width(const Key_block& block) {
    return std::max(2 * static_cast<std::uint32_t>(std::sqrt(block.pair_count)), 1U);
}

} // namespace

Pair_reader::Pair_reader(const scl::Scl_buffer& file) : stream_(file) {
    // Lookups mostly read a few pairs. What needs more asks for a larger window.
    stream_.limit_read_ahead(FEW_PAIRS * TLA_INDEX_PAIR_BYTES);
}

// One scan of the block, once: then every lookup in it knows whether it may search.
bool Pair_reader::ascends(Key_index& index, std::size_t block_index, scl::Scl_status& status) {
    Block_order& order = index.orders[block_index];
    if (order == Block_order::unknown) {
        const bool is_sorted = ascends(index.block_at(block_index), status);
        if (status.has_failed()) return false;
        order = is_sorted ? Block_order::ascending : Block_order::mixed;
    }
    return order == Block_order::ascending;
}

// Where hashes ascend, a search finds the same pair as a scan from the front. Where they do not,
// the pair is looked up in an order of all pairs: a scan of the block for each lookup would let a
// small crafted file keep a reader busy.
std::uint32_t Pair_reader::first_with(Key_index& index, std::size_t block_index, std::uint64_t hash,
                                      scl::Scl_status& status) {
    const Key_block block = index.block_at(block_index);
    if (ascends(index, block_index, status)) return search(block, hash, status);
    order_pairs(index, status);
    if (status.has_failed()) return 0;
    const auto begin = static_cast<std::uint32_t>(block_index * index.block_size);
    const auto found = std::ranges::lower_bound(index.by_hash, Hash_index{hash, begin});
    const bool has_it = found != index.by_hash.end() && found->hash == hash &&
                        found->index - begin < block.pair_count;
    return has_it ? found->index - begin : block.pair_count;
}

std::span<const Hash_index> Pair_reader::all_with(Key_index& index, std::uint64_t hash,
                                                  scl::Scl_status& status) {
    order_pairs(index, status);
    // Sorted by hash first, so that all pairs of one hash are neighbours.
    const std::span<const Hash_index> pairs = index.by_hash;
    const auto begin = std::ranges::lower_bound(pairs, hash, {}, &Hash_index::hash);
    const auto end = std::ranges::upper_bound(begin, pairs.end(), hash, {}, &Hash_index::hash);
    return {begin, end};
}

// Reads the whole table, once.
void Pair_reader::order_pairs(Key_index& index, scl::Scl_status& status) {
    if (!index.by_hash.empty() || index.samples.empty()) return;
    std::vector<Hash_index> ordered;
    ordered.reserve(index.pair_count); // pairs that the file has
    go_to(index.samples.front().offset);
    while (ordered.size() < index.pair_count && !status.has_failed()) {
        const auto left = index.pair_count - static_cast<std::uint32_t>(ordered.size());
        const auto pairs = whole_pairs(left, status);
        if (pairs.empty()) break;
        for (std::size_t i = 0; i < count_of(pairs); ++i) {
            ordered.push_back({hash_at(pairs, i), static_cast<std::uint32_t>(ordered.size())});
        }
        stream_.skip(pairs.size());
    }
    std::ranges::sort(ordered);
    if (!status.has_failed()) index.by_hash = std::move(ordered);
}

bool Pair_reader::ascends(const Key_block& block, scl::Scl_status& status) {
    go_to(block.offset);
    // No hash is below it, so the first pair passes.
    std::uint64_t last = 0;
    for (std::uint32_t left = block.pair_count; left > 0;) {
        const auto pairs = whole_pairs(left, status);
        if (pairs.empty()) return false;
        for (std::size_t i = 0; i < count_of(pairs); ++i) {
            if (hash_at(pairs, i) < last) return false;
            last = hash_at(pairs, i);
        }
        stream_.skip(pairs.size());
        left -= static_cast<std::uint32_t>(count_of(pairs));
    }
    return true;
}

// Looks at the pairs around the guess, then farther and farther away, but never farther than half
// of what is left: where few values have most of the pairs the guess is useless, and halving still
// ends after a few looks. Tested by
// Lookup.FindsWhatTheRuleSaysInAnyTable.
//
// Invariant: pairs before `begin` have a lower hash, pairs from `end` on have not.
std::uint32_t Pair_reader::search(const Key_block& block, std::uint64_t hash,
                                  scl::Scl_status& status) {
    std::uint32_t begin = 0;
    std::uint32_t end = block.pair_count;
    bool end_has_it = false; // the pair at `end` has the hash
    std::uint32_t around = guess(block, hash);
    for (std::uint32_t step = look_width(block); begin < end; step *= 4) {
        const std::uint32_t width = std::min(look_width(block), end - begin);
        const std::uint32_t from =
            std::clamp(around, begin + width / 2, end - (width + 1) / 2) - width / 2;
        go_to(block.offset + from * TLA_INDEX_PAIR_BYTES);
        const auto pairs = stream_.window(width * TLA_INDEX_PAIR_BYTES, status);
        if (count_of(pairs) < width) return 0;
        const std::uint32_t below = count_below(pairs.first(width * TLA_INDEX_PAIR_BYTES), hash);
        if (below == width) {
            begin = from + width;
            around = begin + std::min(step, (end - begin) / 2);
        } else {
            end = from + below;
            end_has_it = hash_at(pairs, below) == hash;
            if (below > 0) break; // the pair before `end` is in the window and lower: found
            around = end - std::min(step, (end - begin) / 2);
        }
    }
    return end_has_it ? end : block.pair_count;
}

void Pair_reader::append_offsets(std::uint64_t pair_offset, std::uint32_t count,
                                 std::vector<std::int64_t>& offsets, scl::Scl_status& status) {
    go_to(pair_offset);
    while (count > 0) {
        const auto pairs = whole_pairs(count, status);
        if (pairs.empty()) return;
        for (std::size_t i = 0; i < count_of(pairs); ++i) {
            offsets.push_back(offset_at(pairs, i));
        }
        stream_.skip(pairs.size());
        count -= static_cast<std::uint32_t>(count_of(pairs));
    }
}

// Looks at what is buffered before it reads more: the pair is often there.
std::uint32_t Pair_reader::skip_others(std::uint64_t hash, std::uint32_t most,
                                       scl::Scl_status& status) {
    std::uint32_t skipped = 0;
    auto pairs = stream_.window(TLA_INDEX_PAIR_BYTES, status);
    while (skipped < most && count_of(pairs) > 0) {
        const std::size_t count = std::min<std::size_t>(most - skipped, count_of(pairs));
        std::size_t i = 0;
        while (i < count && hash_at(pairs, i) != hash) {
            ++i;
        }
        stream_.skip(i * TLA_INDEX_PAIR_BYTES);
        skipped += static_cast<std::uint32_t>(i);
        if (i < count) break;
        pairs = whole_pairs(most - skipped, status);
    }
    return skipped;
}

// Up to `most` pairs from the position on, as many as one window holds; none at the end of the file
// or after a failure.
std::span<const std::byte> Pair_reader::whole_pairs(std::uint32_t most, scl::Scl_status& status) {
    const auto bytes = stream_.window(std::min(most, WINDOW_PAIRS) * TLA_INDEX_PAIR_BYTES, status);
    const std::size_t count = std::min<std::size_t>(most, count_of(bytes));
    return bytes.first(count * TLA_INDEX_PAIR_BYTES);
}

} // namespace tla
