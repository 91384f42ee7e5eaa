#pragma once

#include "tla/sort/pair_sorter.hpp"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tla {

// Keeps a file offset and, in the bits that no offset of the file needs, a tag: the top bits of the
// record's fingerprint. So most neighbours with equal key hashes are told apart without a look at
// their records, and a pair stays at 16 bytes.
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

// The pairs of one key: of each record the hash of its key field, and its place in the file. One
// object serves a file's keys in turn, so that their memory is taken once.
class Key_pairs {
public:
    // Both numbers may be guesses: with too small a count sorting takes longer, with too large an
    // offset fewer records are told apart at once.
    Key_pairs(std::uint64_t expected_count, std::uint64_t largest_offset)
        : tagger_(largest_offset), sorter_(expected_count) {}

    // Pairs are those of this column from now on. There are none yet, or none any more.
    void begin_key(std::size_t key_field) { key_field_ = key_field; }

    // The record, without its closing byte, and its offset in the file.
    void add(std::span<const std::byte> record, std::uint64_t offset);

    // Of a pair's record offset as it is kept here.
    [[nodiscard]] const Offset_tagger& tagger() const { return tagger_; }

    // Hands all pairs over, sorted by hash, equal ones in the order in which they were added, and
    // keeps none.
    void drain(Tla_pair_sink& sink) { sorter_.drain(sink); }

private:
    std::size_t key_field_ = 0;
    Offset_tagger tagger_;
    Tla_pair_sorter sorter_;
};

} // namespace tla
