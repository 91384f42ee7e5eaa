#pragma once

#include "tla/scan/data_set_records.hpp"
#include "tla/scan/key_order.hpp"
#include "tla/scan/pair_table.hpp"
#include "tla/scan/record_table.hpp"
#include "tla/scan/scan_hashes.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tla {

// Makes the pairs of the keys that many records share.
class Pair_maker {
public:
    // `by_key` is filled.
    Pair_maker(const Data_set_records& records, const Key_order& key_order,
               const Scan_hashes& hashes, const Record_table& by_key)
        : records_(records), key_order_(key_order), hashes_(hashes), by_key_(by_key) {}

    // The pairs of the keys in those buckets, which hold `key_values` entries. None when they would
    // take more than `most_bytes`.
    [[nodiscard]] std::optional<Pair_table>
    make(const std::vector<bool>& buckets, std::uint64_t key_values, std::uint64_t most_bytes);

private:
    [[nodiscard]] bool add_bucket(std::size_t bucket, Pair_table& table);
    template <typename Take>
    void each_pair_in(std::size_t bucket, Take take);
    template <typename Take>
    void each_pair_of(std::uint64_t offset, std::size_t bucket, Take take);
    void gather(std::uint64_t offset, std::size_t bucket);
    void merge_values();

    // A value of a record, each once: a record may have the same in a hundred thousand fields.
    struct Field_value {
        std::uint64_t hash;
        std::uint32_t times;
        bool is_key; // one of the bucket
    };

    const Data_set_records& records_;
    const Key_order& key_order_;
    const Scan_hashes& hashes_;
    const Record_table& by_key_;
    std::vector<Field_value> values_;     // of the record that is looked at
    std::vector<Pair_table::Pair> pairs_; // of a bucket, when they are few
};

} // namespace tla
