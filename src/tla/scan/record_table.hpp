#pragma once

#include "tla/scan/large_array.hpp"
#include "tla/scan/tagged_offset.hpp"
#include "tla/scan/wide_product.hpp"

#include <cstddef>
#include <cstdint>

namespace tla {

// From a hash to records: a bucket for some hashes each, in it the records' offsets and eight bits
// of each one's hash, all buckets back to back. It is filled in two passes over the same hashes:
// each is counted, then, in any order, each is put in. So nothing is moved or linked, and a hash
// that millions of records share takes no more than any other.
class Record_table {
public:
    struct Range { // of entries
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
        format_.put(entry_at(ends_[bucket_of(hash)]++), hash, offset);
    }
    void prefetch(std::uint64_t hash) const { __builtin_prefetch(&ends_[bucket_of(hash)], 1); }
    void prefetch_entry(std::uint64_t hash) const {
        __builtin_prefetch(entry_at(ends_[bucket_of(hash)]), 1);
    }

    [[nodiscard]] std::size_t bucket_of(std::uint64_t hash) const {
        return static_cast<std::size_t>(index_of_hash(hash, ends_.size()));
    }
    [[nodiscard]] std::size_t bucket_count() const { return ends_.size(); }
    // How many entries it is filled with.
    [[nodiscard]] std::uint64_t size() const { return ends_[ends_.size() - 1]; }
    // The entries that may be the hash's; those that may_be() says are with few exceptions.
    [[nodiscard]] Range entries_of(std::uint64_t hash) const { return entries_in(bucket_of(hash)); }
    [[nodiscard]] Range entries_in(std::size_t bucket) const {
        return {bucket == 0 ? 0 : ends_[bucket - 1], ends_[bucket]};
    }
    [[nodiscard]] bool may_be(std::uint64_t entry, std::uint64_t hash) const {
        return Tagged_offset::may_be(entry_at(entry), hash);
    }
    [[nodiscard]] std::uint64_t offset(std::uint64_t entry) const {
        return format_.offset(entry_at(entry));
    }

private:
    static constexpr std::uint64_t ENTRIES_A_BUCKET = 6;

    [[nodiscard]] const std::byte* entry_at(std::uint64_t entry) const {
        return &entries_[static_cast<std::size_t>(entry) * format_.size()];
    }
    [[nodiscard]] std::byte* entry_at(std::uint64_t entry) {
        return &entries_[static_cast<std::size_t>(entry) * format_.size()];
    }

    Tagged_offset format_;
    Large_array<std::uint64_t> ends_; // of the buckets; while it is filled, where the next one goes
    Large_array<std::byte> entries_;
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
    entries_ =
        Large_array<std::byte>(static_cast<std::size_t>(entries + 1) * format_.size(), false);
}

} // namespace tla
