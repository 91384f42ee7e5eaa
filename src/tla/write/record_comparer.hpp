#pragma once

#include "records/values/tla_record_scanner.hpp"
#include "scl/io/scl_buffer.hpp"

#include <cstdint>
#include <span>

namespace tla {

// A hash of a record's bytes: records with different fingerprints differ. Use the top bits; unlike
// the low ones, they depend on every byte of the record.
[[nodiscard]] std::uint64_t record_fingerprint(std::span<const std::byte> record);

// Tells whether two records are equal in all fields.
class Record_comparer {
public:
    // `records` holds records back to back and must outlive the comparer, as must `status`.
    Record_comparer(const scl::Scl_buffer& records, std::size_t field_count,
                    scl::Scl_status& status);

    // `a` and `b` are offsets from the start of the buffer. Records near those compared last are
    // still in memory. Codes: SCL_STATUS_READ_FAILED, TLA_STATUS_RECORD_END.
    [[nodiscard]] bool equal(std::uint64_t a, std::uint64_t b, scl::Scl_status& status);

private:
    scl::Scl_buffered_istream stream_a_;
    scl::Scl_buffered_istream stream_b_;
    Tla_record_scanner a_;
    Tla_record_scanner b_;
};

} // namespace tla
