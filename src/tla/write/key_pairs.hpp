#pragma once

#include "tla/sort/pair_sorter.hpp"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tla {

// Packs a record's offset and a tag, the top bits of its fingerprint, into 64 bits. In a file below
// 1 GiB, for example:
//
//     63            30 29           0
//     | fingerprint   | offset      |
//
// Different tags mean different records. So most records with equal key hashes are told apart
// without reading them, and a pair stays at 16 bytes.
class Offset_tagger {
public:
    explicit Offset_tagger(std::uint64_t largest_offset)
        : offset_mask_((std::uint64_t{1} << std::bit_width(largest_offset)) - 1) {}

    [[nodiscard]] std::uint64_t tagged(std::uint64_t offset, std::uint64_t fingerprint) const {
        return offset | (fingerprint & ~offset_mask_);
    }
    [[nodiscard]] std::uint64_t offset(std::uint64_t tagged) const { return tagged & offset_mask_; }
    [[nodiscard]] bool same_tag(std::uint64_t a, std::uint64_t b) const {
        return ((a ^ b) & ~offset_mask_) == 0;
    }

private:
    std::uint64_t offset_mask_; // a file's size is a signed 64-bit number, so one bit is spare
};

// The pairs of one key: for each record the hash of its key field and its offset in the file. One
// object serves all keys of a file in turn and reuses its memory.
class Key_pairs {
public:
    // Both may be estimates. Too small a count makes sorting slower; too large an offset leaves
    // fewer bits for the tags. No offset may be larger than `largest_offset`.
    Key_pairs(std::uint64_t expected_count, std::uint64_t largest_offset)
        : tagger_(largest_offset), sorter_(expected_count) {}

    // The pairs added from now on are those of this column. There must be none.
    void begin_key(std::size_t key_field) { key_field_ = key_field; }

    // Adds the pair of a record, given without its closing byte; `offset` is that in the file.
    void add(std::span<const std::byte> record, std::uint64_t offset);

    // Unpacks the record offsets of the pairs that drain() hands over.
    [[nodiscard]] const Offset_tagger& tagger() const { return tagger_; }

    // Hands all pairs over, sorted by hash, and keeps none. Pairs with equal hashes stay in the
    // order in which they were added.
    void drain(Tla_pair_sink& sink) { sorter_.drain(sink); }

private:
    std::size_t key_field_ = 0;
    Offset_tagger tagger_;
    Tla_pair_sorter sorter_;
};

} // namespace tla
