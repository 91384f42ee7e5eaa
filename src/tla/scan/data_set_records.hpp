#pragma once

#include "records/values/record_layout.hpp"
#include "tla/scan/scan_hashes.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace scl {
class Scl_status;
} // namespace scl

namespace tla {

// What there is of the values of a data set, for tables of the right size.
struct Value_totals {
    std::uint64_t sequences = 0;          // values, and their short beginnings
    std::uint64_t values = 0;             // fields with a value
    std::uint64_t key_values = 0;         // key fields with one
    std::uint64_t pairs = 0;              // a key's value beside another field's
    std::uint64_t largest[VALUE_KINDS]{}; // token values of the longest value of each kind
};

// The records of a data set file in memory, checked to lie in it. A record's offset counts in bytes
// from the first record on.
class Data_set_records {
public:
    // `section` begins with the first record and ends where the key tables begin. Pushes
    // SCL_STATUS_END_OF_DATA when it ends before the records do and TLA_STATUS_RECORD_END when one
    // does not end as it should.
    Data_set_records(std::span<const std::byte> section, std::uint64_t count,
                     std::vector<Value_kind> kinds, const std::vector<bool>& is_key,
                     scl::Scl_status& status);

    [[nodiscard]] std::span<const Value_kind> kinds() const { return kinds_; }
    [[nodiscard]] std::uint64_t count() const { return count_; }
    [[nodiscard]] std::uint64_t size() const { return size_; } // bytes
    [[nodiscard]] const Value_totals& totals() const { return totals_; }

    // A number for each record, below number_limit(), that no other record has: a record is at
    // least as long as its counts.
    [[nodiscard]] std::uint64_t number_of(std::uint64_t offset) const {
        return offset / least_size_;
    }
    [[nodiscard]] std::uint64_t number_limit() const { return size_ / least_size_ + 1; }

    // Lets memory bring a record that will be read soon: most have no more than two cache lines.
    void prefetch(std::uint64_t offset) const {
        constexpr std::uint64_t LINE = 64;
        __builtin_prefetch(&section_[static_cast<std::size_t>(offset)]);
        __builtin_prefetch(&section_[static_cast<std::size_t>(std::min(offset + LINE, size_ - 1))]);
    }

    // Shows the values of each field to `take(field, values)`, where they lie in the record; gives
    // the offset of the next record.
    template <typename Take>
    std::uint64_t each_field(std::uint64_t offset, Take take) const;

    // Shows each record's offset to `take`, which gives that of the next.
    template <typename Take>
    void each_record(Take take) const;

private:
    void survey(const std::vector<bool>& is_key, scl::Scl_status& status);

    std::span<const std::byte> section_;
    std::vector<Value_kind> kinds_; // of the fields
    std::uint64_t count_;
    std::uint64_t size_ = 0;
    std::uint64_t least_size_;
    Value_totals totals_;
};

template <typename Take>
std::uint64_t Data_set_records::each_field(std::uint64_t offset, Take take) const {
    const std::byte* at = section_.data() + offset;
    for (std::size_t field = 0; field < kinds_.size(); ++field) {
        const std::size_t size = tla_field_size(at);
        take(field, std::span(at + TLA_COUNT_BYTES, size - TLA_COUNT_BYTES));
        at += size;
    }
    return static_cast<std::uint64_t>(at - section_.data()) + TLA_RECORD_END_BYTES;
}

template <typename Take>
void Data_set_records::each_record(Take take) const {
    std::uint64_t offset = 0;
    for (std::uint64_t left = count_; left > 0; --left) {
        offset = take(offset);
    }
}

// Of more than Scan_hashes::SHORT_LENGTH values; seldom asked for.
[[nodiscard]] std::uint64_t hash_of_long_values(const Scan_hashes& hashes, Value_kind kind,
                                                std::span<const std::byte> values);

// Of several values; take_beginning as below.
template <typename Take>
[[nodiscard]] std::uint64_t hash_of_several(const Scan_hashes& hashes, Value_kind kind,
                                            std::span<const std::byte> values,
                                            Take take_beginning) {
    const std::size_t count = values.size() / TLA_TOKEN_VALUE_BYTES;
    const bool is_long = count > Scan_hashes::SHORT_LENGTH;
    const std::size_t followed = is_long ? Scan_hashes::SHORT_LENGTH : count;
    std::uint64_t hash = hashes.extended(hashes.start(kind), tla_value_at(values, 0));
    for (std::size_t i = 1; i < followed; ++i) {
        take_beginning(hash);
        hash = hashes.extended(hash, tla_value_at(values, i));
    }
    if (!is_long) return hash;
    take_beginning(hash);
    return hash_of_long_values(hashes, kind, values);
}

// The hash of a field's values; take_beginning(hash) is shown that of each proper beginning of up
// to Scan_hashes::SHORT_LENGTH values. Apart from the others, as most fields have one value.
template <typename Take>
[[nodiscard]] inline std::uint64_t hash_of_values(const Scan_hashes& hashes, Value_kind kind,
                                                  std::span<const std::byte> values,
                                                  Take take_beginning) {
    if (values.size() > TLA_TOKEN_VALUE_BYTES) {
        return hash_of_several(hashes, kind, values, take_beginning);
    }
    return hashes.extended(hashes.start(kind), tla_value_at(values, 0));
}
[[nodiscard]] inline std::uint64_t hash_of_values(const Scan_hashes& hashes, Value_kind kind,
                                                  std::span<const std::byte> values) {
    return hash_of_values(hashes, kind, values, [](std::uint64_t) {});
}

} // namespace tla
