#include "tla/scan/data_set_records.hpp"

#include "records/values/tla_status_codes.hpp"
#include "scl/status/scl_status.hpp"

#include <algorithm>
#include <utility>

namespace tla {

Data_set_records::Data_set_records(std::span<const std::byte> section, std::uint64_t count,
                                   std::vector<Value_kind> kinds, const std::vector<bool>& is_key,
                                   scl::Scl_status& status)
    : section_(section),
      kinds_(std::move(kinds)),
      count_(count),
      least_size_(kinds_.size() * TLA_COUNT_BYTES + TLA_RECORD_END_BYTES) {
    survey(is_key, status);
}

// The one offset that checks bounds: all other code steps through the same bytes again.
void Data_set_records::survey(const std::vector<bool>& is_key, scl::Scl_status& status) {
    std::size_t at = 0;
    // Compared by what is left, which cannot overflow.
    const auto fits = [&](std::size_t bytes) { return section_.size() - at >= bytes; };
    for (std::uint64_t record = 0; record < count_; ++record) {
        std::uint64_t values_here = 0;
        std::uint64_t keys_here = 0;
        for (std::size_t field = 0; field < kinds_.size(); ++field) {
            if (!fits(TLA_COUNT_BYTES) || !fits(tla_field_size(&section_[at]))) {
                return status.push(scl::SCL_STATUS_END_OF_DATA);
            }
            // A value counts for the tables only if it can occur.
            const std::size_t size = tla_field_size(&section_[at]);
            const std::uint64_t values = size / TLA_TOKEN_VALUE_BYTES;
            at += size;
            if (kinds_[field] == Value_kind::none || values == 0) continue;
            std::uint64_t& largest = totals_.largest[static_cast<std::size_t>(kinds_[field])];
            largest = std::max(largest, values);
            totals_.sequences += std::min<std::uint64_t>(values, Scan_hashes::SHORT_LENGTH + 1);
            ++values_here;
            keys_here += is_key[field] ? 1 : 0;
        }
        if (!fits(TLA_RECORD_END_BYTES)) return status.push(scl::SCL_STATUS_END_OF_DATA);
        // Only this byte tells that the counts in front of it were right.
        if (section_[at++] != std::byte{TLA_RECORD_END}) return status.push(TLA_STATUS_RECORD_END);
        totals_.values += values_here;
        totals_.key_values += keys_here;
        totals_.pairs += keys_here * (values_here - (keys_here == 0 ? 0 : 1));
    }
    size_ = at;
}

std::uint64_t hash_of_long_values(const Scan_hashes& hashes, Value_kind kind,
                                  std::span<const std::byte> values) {
    const std::size_t count = values.size() / TLA_TOKEN_VALUE_BYTES;
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        sum = hashes.rolled(sum, tla_value_at(values, i));
    }
    return hashes.of_long(kind, sum, count);
}

} // namespace tla
