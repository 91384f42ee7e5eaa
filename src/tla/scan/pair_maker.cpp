#include "tla/scan/pair_maker.hpp"

#include <algorithm>
#include <limits>

// Goes through the keys' buckets and reads the records of each: that is one step to far memory a
// record, asked for ahead, while a table of all pairs would take one for each pair.
namespace tla {

std::optional<Pair_table> Pair_maker::make(const std::vector<bool>& buckets,
                                           std::uint64_t key_values, std::uint64_t most_bytes) {
    // Each entry has a pair with each other field at most.
    const std::uint64_t others = records_.kinds().size() - 1;
    const std::uint64_t most_pairs = std::min(key_values * others, records_.totals().pairs);
    Pair_table table(most_pairs, buckets.size(), records_.size(), most_bytes);
    for (std::size_t bucket = 0; bucket < buckets.size(); ++bucket) {
        if (buckets[bucket] && !add_bucket(bucket, table)) return {};
    }
    return table;
}

// Pairs of a usual bucket are kept for the table's passes. A bucket of millions is gone through
// again for each of them.
bool Pair_maker::add_bucket(std::size_t bucket, Pair_table& table) {
    constexpr std::size_t MOST_KEPT = std::size_t{1} << 14U;
    std::uint64_t count = 0;
    pairs_.clear();
    each_pair_in(bucket, [&](const Pair_table::Pair& pair) {
        if (pairs_.size() < MOST_KEPT) pairs_.push_back(pair);
        ++count;
    });
    return table.add(bucket, count, [&](auto take) {
        if (count == pairs_.size()) {
            std::ranges::for_each(pairs_, take);
        } else {
            each_pair_in(bucket, take);
        }
    });
}

template <typename Take>
void Pair_maker::each_pair_in(std::size_t bucket, Take take) {
    constexpr std::uint64_t AHEAD = 16; // records: about the time that memory takes
    const Record_table::Range entries = by_key_.entries_in(bucket);
    std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
    for (std::uint64_t entry = entries.begin; entry < entries.end; ++entry) {
        // Those of the next buckets, too.
        if (entry + AHEAD < by_key_.size()) records_.prefetch(by_key_.offset(entry + AHEAD));
        // A record of several keys in the bucket has several entries, one behind the other.
        const std::uint64_t offset = by_key_.offset(entry);
        if (offset != last) each_pair_of(offset, bucket, take);
        last = offset;
    }
}

template <typename Take>
void Pair_maker::each_pair_of(std::uint64_t offset, std::size_t bucket, Take take) {
    gather(offset, bucket);
    for (const Field_value& key : values_) {
        if (!key.is_key) continue;
        for (const Field_value& other : values_) {
            if (other.hash == key.hash && key.times == 1) continue;
            take(Pair_table::Pair{hashes_.paired(key.hash, other.hash), offset});
        }
    }
}

void Pair_maker::gather(std::uint64_t offset, std::size_t bucket) {
    values_.clear();
    records_.each_field(offset, [&](std::size_t field, std::span<const std::byte> values) {
        const Value_kind kind = records_.kinds()[field];
        if (values.empty() || kind == Value_kind::none) return;
        const std::uint64_t hash = hash_of_values(hashes_, kind, values);
        const bool is_key = key_order_[field] != NO_KEY && by_key_.bucket_of(hash) == bucket;
        values_.push_back({hash, 1, is_key});
    });
    merge_values();
}

// Of few values it is quicker to compare each with all.
void Pair_maker::merge_values() {
    constexpr std::size_t FEW = 8;
    const bool are_few = values_.size() <= FEW;
    if (!are_few) std::ranges::sort(values_, {}, &Field_value::hash);
    std::size_t kept = 0;
    for (const Field_value value : values_) {
        std::size_t same = kept == 0 || are_few ? 0 : kept - 1;
        while (same < kept && values_[same].hash != value.hash) {
            ++same;
        }
        if (same == kept) {
            values_[kept++] = value;
        } else {
            values_[same].times += value.times;
            values_[same].is_key |= value.is_key;
        }
    }
    values_.resize(kept);
}

} // namespace tla
