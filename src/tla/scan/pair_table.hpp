#pragma once

#include "tla/scan/large_array.hpp"
#include "tla/scan/record_table.hpp"
#include "tla/scan/tagged_offset.hpp"
#include "tla/scan/wide_product.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <vector>

namespace tla {

// The pairs of one bucket of key values, a small table of its own within a Pair_table:
//
//   u32            how many slots
//   u32 a slot     where its pairs end, counted in pairs
//   pairs          each a Tagged_offset
//
// In native byte order, not aligned. A view: it lasts as long as its table does.
class Pairs_of_bucket {
public:
    using Range = Record_table::Range;

    Pairs_of_bucket(const std::byte* at, Tagged_offset format)
        : at_(at), pairs_(at + (1 + slot_count()) * sizeof(std::uint32_t)), format_(format) {}

    // The entries that may be the pair's; those that may_be() says are with few exceptions.
    [[nodiscard]] Range entries_of(std::uint64_t hash) const {
        const std::uint64_t slot = index_of_hash(hash, slot_count());
        return {slot == 0 ? 0 : number(slot), number(slot + 1)};
    }
    [[nodiscard]] bool may_be(std::uint64_t entry, std::uint64_t hash) const {
        return Tagged_offset::may_be(pairs_ + entry * format_.size(), hash);
    }
    [[nodiscard]] std::uint64_t offset(std::uint64_t entry) const {
        return format_.offset(pairs_ + entry * format_.size());
    }

private:
    [[nodiscard]] std::uint64_t slot_count() const { return number(0); }
    [[nodiscard]] std::uint32_t number(std::uint64_t index) const {
        std::uint32_t number = 0;
        std::memcpy(&number, at_ + index * sizeof number, sizeof number);
        return number;
    }

    const std::byte* at_;
    const std::byte* pairs_;
    Tagged_offset format_;
};

// From a key field's value and another field's to the records that have both. The pairs of one
// bucket of keys lie together, since a text asks for many pairs of a key at a time, and since they
// can be made bucket by bucket: in the cache, of records that are read once.
class Pair_table {
public:
    struct Pair {
        std::uint64_t hash;
        std::uint64_t offset; // of the record
    };

    // For at most so many pairs in so many buckets, of records at offsets below `limit`. They take
    // at most `most_bytes`, and some more for each bucket.
    Pair_table(std::uint64_t most_pairs, std::size_t buckets, std::uint64_t limit,
               std::uint64_t most_bytes);

    // Adds a bucket, once, of `count` pairs; `each(take)` shows them, twice, in any order. False
    // when there is no room: then the table is of no use.
    template <typename Each>
    [[nodiscard]] bool add(std::size_t bucket, std::uint64_t count, Each each);

    // Of a bucket that was added.
    [[nodiscard]] Pairs_of_bucket pairs_of(std::size_t bucket) const {
        return {&memory_[static_cast<std::size_t>(starts_[bucket])], format_};
    }

private:
    static constexpr std::uint64_t PAIRS_A_SLOT = 8;

    Tagged_offset format_;
    Large_array<std::uint64_t> starts_; // of the buckets, in bytes
    Large_array<std::byte> memory_;
    std::uint64_t used_ = 0;          // bytes
    std::vector<std::uint32_t> ends_; // of the slots of the bucket that is added
};

template <typename Each>
bool Pair_table::add(std::size_t bucket, std::uint64_t count, Each each) {
    const std::uint64_t slots = count / PAIRS_A_SLOT + 1;
    const std::uint64_t size = (1 + slots) * sizeof(std::uint32_t) + count * format_.size();
    if (count > std::numeric_limits<std::uint32_t>::max() || size > memory_.size() - used_) {
        return false;
    }
    starts_[bucket] = used_;
    ends_.assign(static_cast<std::size_t>(slots), 0);
    const auto end_of = [&](const Pair& pair) -> std::uint32_t& {
        return ends_[static_cast<std::size_t>(index_of_hash(pair.hash, slots))];
    };
    each([&](const Pair& pair) { ++end_of(pair); });
    // From how many a slot has to where it begins: filling moves that to its end.
    std::exclusive_scan(ends_.begin(), ends_.end(), ends_.begin(), std::uint32_t{0});
    std::byte* const at = &memory_[static_cast<std::size_t>(used_)];
    std::byte* const pairs = at + (1 + slots) * sizeof(std::uint32_t);
    each([&](const Pair& pair) {
        format_.put(pairs + end_of(pair)++ * format_.size(), pair.hash, pair.offset);
    });
    const auto slot_count = static_cast<std::uint32_t>(slots);
    std::memcpy(at, &slot_count, sizeof slot_count);
    std::memcpy(at + sizeof slot_count, ends_.data(), ends_.size() * sizeof(std::uint32_t));
    used_ += size;
    return true;
}

} // namespace tla
