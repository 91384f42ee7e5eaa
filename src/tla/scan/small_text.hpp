#pragma once

#include "tla/scan/data_set_records.hpp"
#include "tla/scan/scan_tables.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tla {

// A single short text is scanned without tables of all records, which would take longer to make
// than anything else: its token values are gathered, one pass over the records picks those that
// could be reported, and the tables are made of these alone. The scan goes the same way from there
// on.

// Which token values a text has, in any form or reading; a yes may be wrong.
class Value_set {
public:
    explicit Value_set(const Scan_hashes& hashes) : hashes_(hashes), bits_(BITS) {}

    void add(std::uint64_t value) { bits_[bit_of(value)] = true; }
    [[nodiscard]] bool may_hold(std::uint64_t value) const { return bits_[bit_of(value)]; }

private:
    static constexpr unsigned LOG_BITS = 17; // 16 KiB: half of a first-level cache
    static constexpr std::size_t BITS = std::size_t{1} << LOG_BITS;

    [[nodiscard]] std::size_t bit_of(std::uint64_t value) const {
        return static_cast<std::size_t>(hashes_.mixed(value) >> (64U - LOG_BITS));
    }

    const Scan_hashes& hashes_;
    std::vector<bool> bits_;
};

// The offsets of the records of which a key and enough fields in all have token values of the set
// alone. None when they are more than tables of their own would pay for.
[[nodiscard]] std::optional<std::vector<std::uint64_t>>
records_with(const Value_set& values, const Data_set_records& records, const Key_order& key_order,
             std::size_t least);

} // namespace tla
