#pragma once

#include "scl/io/scl_endian.hpp"
#include "scl/io/scl_ostream.hpp"
#include "tla/build/record_comparer.hpp"
#include "tla/sort/pair_sorter.hpp"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tla {

// A hash over a record's bytes; records with different fingerprints differ.
[[nodiscard]] inline std::uint64_t record_fingerprint(std::span<const std::byte> record) {
    constexpr std::uint64_t MULTIPLIER = 0x9E3779B97F4A7C15; // 2^64 / golden ratio, odd
    constexpr std::size_t WORD = sizeof(std::uint64_t);
    std::uint64_t state = record.size();
    const auto mix = [&state](std::uint64_t word) {
        state = (state ^ word) * MULTIPLIER;
        state ^= state >> 32;
    };
    std::size_t at = 0;
    for (; record.size() - at > WORD; at += WORD) {
        mix(scl::scl_load_le<std::uint64_t>(record.data() + at));
    }
    if (record.size() >= WORD) { // the last word may overlap the one before
        mix(scl::scl_load_le<std::uint64_t>(record.data() + record.size() - WORD));
    }
    return state * MULTIPLIER; // the top bits depend on all of the state
}

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

// Writes sorted pairs, and leaves out each whose record equals, in all fields, that of the pair
// written before it with the same hash; every one left out pushes TLA_STATUS_DUPLICATE_LEFT_OUT.
class Key_table_writer final : public Tla_pair_sink {
public:
    // The pairs' record offsets are tagged ones. `header_end` is the file offset of the first
    // record. Everything given must outlive the writer.
    Key_table_writer(Record_comparer& comparer, const Offset_tagger& tagger,
                     std::uint64_t header_end, scl::Scl_ostream& out, scl::Scl_status& status);

    void take(std::span<const Index_pair> pairs) override;

private:
    [[nodiscard]] bool repeats_last(const Index_pair& pair);
    void write(const Index_pair& pair);

    Record_comparer& comparer_;
    const Offset_tagger& tagger_;
    std::uint64_t header_end_;
    scl::Scl_ostream& out_;
    scl::Scl_status& status_;
    Index_pair last_{};
    bool any_ = false; // with no pair written yet there is nothing to compare with
};

} // namespace tla
