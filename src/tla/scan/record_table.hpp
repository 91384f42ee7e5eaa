#pragma once

#include "scl/io/scl_endian.hpp"
#include "tla/scan/large_array.hpp"
#include "tla/scan/wide_product.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace tla {

// From a hash to records: a bucket for some hashes each, in it the records' offsets and eight bits
// of each one's hash, all buckets back to back. It is filled in two passes over the same hashes:
// each is counted, then, in any order, each is put in. So nothing is moved or linked, and a hash
// that millions of records share takes no more than any other.
class Record_table {
public:
    struct Range {
        std::uint64_t begin;
        std::uint64_t end;
        [[nodiscard]] std::uint64_t size() const { return end - begin; }
    };

    // For about so many entries, of offsets below `limit`.
    Record_table(std::uint64_t entries, std::uint64_t limit);

    // How many bytes a table of so many entries takes.
    [[nodiscard]] static std::uint64_t bytes_of(std::uint64_t entries, std::uint64_t limit);

    void count(std::uint64_t hash) { ++ends_[bucket_of(hash)]; }
    // All are counted. Shows each bucket's size to `take(bucket, size)`.
    template <typename Take>
    void lay_out(Take take);
    void put(std::uint64_t hash, std::uint64_t offset) {
        std::byte* const entry = entry_at(ends_[bucket_of(hash)]++);
        entry[0] = tag_of(hash);
        std::array<std::byte, sizeof offset> bytes{};
        scl::scl_store_le(bytes.data(), offset);
        std::copy_n(bytes.begin(), width_, entry + 1);
    }
    void prefetch(std::uint64_t hash) const { __builtin_prefetch(&ends_[bucket_of(hash)], 1); }
    void prefetch_entry(std::uint64_t hash) const {
        __builtin_prefetch(entry_at(ends_[bucket_of(hash)]), 1);
    }

    [[nodiscard]] std::size_t bucket_of(std::uint64_t hash) const {
        return static_cast<std::size_t>(index_of_hash(hash, ends_.size()));
    }
    [[nodiscard]] std::size_t bucket_count() const { return ends_.size(); }
    // The entries that may be the hash's; those that may_be() says are with few exceptions.
    [[nodiscard]] Range entries_of(std::uint64_t hash) const {
        const std::size_t bucket = bucket_of(hash);
        return {bucket == 0 ? 0 : ends_[bucket - 1], ends_[bucket]};
    }
    [[nodiscard]] bool may_be(std::uint64_t entry, std::uint64_t hash) const {
        return *entry_at(entry) == tag_of(hash);
    }
    [[nodiscard]] std::uint64_t offset(std::uint64_t entry) const {
        std::array<std::byte, sizeof(std::uint64_t)> bytes{};
        std::copy_n(entry_at(entry) + 1, width_, bytes.begin());
        return scl::scl_load_le<std::uint64_t>(bytes.data());
    }

private:
    static constexpr std::uint64_t ENTRIES_A_BUCKET = 6;

    [[nodiscard]] static std::byte tag_of(std::uint64_t hash) {
        return static_cast<std::byte>(hash);
    }
    [[nodiscard]] const std::byte* entry_at(std::uint64_t entry) const {
        return &entries_[static_cast<std::size_t>(entry) * (1 + width_)];
    }
    [[nodiscard]] std::byte* entry_at(std::uint64_t entry) {
        return &entries_[static_cast<std::size_t>(entry) * (1 + width_)];
    }
    [[nodiscard]] static std::size_t width_of(std::uint64_t limit);

    Large_array<std::uint64_t> ends_; // of the buckets; while it is filled, where the next one goes
    std::size_t width_;               // bytes of an offset
    Large_array<std::byte>
        entries_; // of each eight bits of its hash, then its offset, little-endian
};

template <typename Take>
void Record_table::lay_out(Take take) {
    std::uint64_t entries = 0;
    for (std::size_t bucket = 0; bucket < ends_.size(); ++bucket) {
        const std::uint64_t size = ends_[bucket];
        take(bucket, size);
        ends_[bucket] = entries; // its begin: put() moves it to its end
        entries += size;
    }
    entries_ = Large_array<std::byte>(static_cast<std::size_t>(entries + 1) * (1 + width_), false);
}

} // namespace tla
