#include "tla/read/keys/key_index.hpp"

#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>

namespace tla {

namespace {

// Byte by byte: only the closing byte tells how long a name is.
std::u16string read_name(scl::Scl_buffered_istream& in, const scl::Scl_status& status) {
    std::string name;
    for (char byte = TLA_NAME_END;;) {
        byte = static_cast<char>(in.read_char());
        if (byte == TLA_NAME_END || status.has_failed()) break;
        name += byte;
    }
    std::u16string wide;
    scl::scl_stow(name, wide);
    return wide;
}

// How many whole pairs the file has from the position on, at most `record_count`.
std::uint32_t count_pairs(const scl::Scl_buffered_istream& in, std::uint32_t record_count,
                          scl::Scl_status& status) {
    const std::uint64_t size = in.size(status);
    const std::uint64_t left = size - std::min(in.tell(), size);
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(record_count, left / TLA_INDEX_PAIR_BYTES));
}

// Reads only the first hash of each block, 8 bytes in 64 KiB: loading stays fast however many
// records there are.
void read_samples(scl::Scl_buffered_istream& in, std::uint32_t record_count, Key_index& index,
                  scl::Scl_status& status) {
    for (std::uint32_t remaining = record_count; remaining != 0;) {
        Index_sample sample{0, in.tell()};
        in.read_le(sample.first_hash, status);
        if (status.has_failed()) break;
        index.samples.push_back(sample);
        const std::uint32_t block = std::min(remaining, index.block_size);
        in.set_position(sample.offset + block * TLA_INDEX_PAIR_BYTES);
        remaining -= block;
    }
    // Duplicates were left out, so this table is shorter than record_count. The next table is then
    // sought past the end of the file, and fails.
    if (status == scl::SCL_STATUS_END_OF_DATA) status.clear();
}

} // namespace

std::size_t Key_index::block_index_of(std::uint64_t hash) const {
    if (samples_ascend) { // then only the last block that begins with the hash or below it fits
        const auto next = std::ranges::upper_bound(samples, hash, {}, &Index_sample::first_hash);
        return next == samples.begin() ? samples.size()
                                       : static_cast<std::size_t>(next - samples.begin()) - 1;
    }
    // Several blocks may fit, or none: the rule of docs/reading.md, block by block.
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const Key_block block = block_at(i);
        const bool is_last = i + 1 == samples.size();
        if (block.first_hash <= hash && (is_last || block.next_hash > hash)) return i;
    }
    return samples.size();
}

// Pairs of one hash can lie on both sides of a block's border: the block before the first that
// begins with the hash may end with it.
Block_range Key_index::blocks_with(std::uint64_t hash) const {
    const auto first = std::ranges::lower_bound(samples, hash, {}, &Index_sample::first_hash);
    const auto behind = std::ranges::find_if(
        first, samples.end(), [hash](const Index_sample& next) { return next.first_hash > hash; });
    const auto begin = static_cast<std::size_t>(first - samples.begin());
    return {begin - std::min<std::size_t>(begin, 1),
            static_cast<std::size_t>(behind - samples.begin())};
}

Key_block Key_index::block_at(std::size_t block_index) const {
    const auto before = static_cast<std::uint32_t>(block_index * block_size);
    const bool is_last = block_index + 1 == samples.size();
    return {.offset = samples[block_index].offset,
            .pair_count = std::min(block_size, pair_count - before),
            .first_hash = samples[block_index].first_hash,
            .next_hash = is_last ? ~std::uint64_t{0} : samples[block_index + 1].first_hash};
}

Key_index read_key_index(scl::Scl_buffered_istream& in, std::uint32_t record_count,
                         std::uint32_t block_size, scl::Scl_status& status) {
    Key_index index;
    index.name = read_name(in, status);
    if (status.has_failed()) return index;
    index.block_size = block_size;
    in.set_position(tla_aligned(in.tell()));
    index.pair_count = count_pairs(in, record_count, status);
    read_samples(in, record_count, index, status);
    // Kept as long as the connector: without spare room.
    index.samples.shrink_to_fit();
    // All unknown: each block is looked at when a lookup first comes to it.
    index.orders.resize(index.samples.size());
    index.samples_ascend = std::ranges::is_sorted(index.samples, {}, &Index_sample::first_hash);
    return index;
}

} // namespace tla
