#pragma once

#include "tla/scan/data_set_records.hpp"
#include "tla/scan/key_order.hpp"
#include "tla/scan/long_values.hpp"
#include "tla/scan/pair_table.hpp"
#include "tla/scan/record_table.hpp"
#include "tla/scan/value_filter.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tla {

// What a scan asks of a data set's records, made in passes over them:
//   values    which sequences of token values are a field's value, or begin one, and which steps
//             the long ones are followed in
//   by_key    from a key field's value to its records
//   by_pair   from a key field's value and another field's to the records that have both, for the
//             key values that many records share: a text that holds the key then costs as many
//             questions as there are words beside it, and not as many as there are such records
class Scan_tables {
public:
    // Of all records, or of those at the offsets alone. by_pair is left out where it would take
    // more than `most_bytes`.
    Scan_tables(const Data_set_records& records, const Key_order& key_order,
                const Scan_hashes& hashes, std::uint64_t most_bytes,
                std::optional<std::span<const std::uint64_t>> offsets = {});

    [[nodiscard]] Value_filter::Answer ask(std::uint64_t hash) const { return values_.ask(hash); }
    void prefetch(std::uint64_t hash) const { values_.prefetch(hash); }

    [[nodiscard]] const Long_values& long_values() const { return long_values_; }

    [[nodiscard]] const Record_table& by_key() const { return by_key_; }
    // None for a key value of few and short records, which are quicker looked at one by one.
    [[nodiscard]] std::optional<Pairs_of_bucket> by_pair(std::uint64_t key_value) const;

    // How many different values a kind has, about; 0 for a kind that does not occur.
    [[nodiscard]] std::uint64_t different(Value_kind kind) const {
        return different_[static_cast<std::size_t>(kind)];
    }

private:
    class Maker;

    // Fewer records than this need no pairs, but where a record is long: to look at one takes as
    // long as it has bytes, at each occurrence of its key.
    static constexpr std::uint64_t FEW_RECORDS = 16;
    static constexpr std::uint64_t LONG_RECORD = 256; // bytes
    // Room in the filter for each record of few.
    static constexpr std::uint64_t SEQUENCES_A_RECORD = 64;

    Value_filter values_;
    Long_values long_values_;
    Record_table by_key_;
    std::vector<bool> has_pairs_; // by bucket of by_key_
    std::optional<Pair_table> by_pair_;
    std::uint64_t different_[VALUE_KINDS]{};
};

} // namespace tla
