#include "tla/write/record_comparer.hpp"

#include "scl/io/scl_endian.hpp"

#include <algorithm>

namespace tla {

namespace {

// One page: most records are far smaller, and equal hashes lead to records all over the file, so
// that reading further ahead would be wasted.
constexpr std::size_t READ_AHEAD_BYTES = 4096;

} // namespace

// Two sums, as in Fletcher's checksum: one of the words and one of the first sum's values, so that
// the order of the words counts. Token values are CRCs and spread evenly already: no more mixing is
// needed. When the size is no multiple of 8, the last word overlaps the one before it.
std::uint64_t record_fingerprint(std::span<const std::byte> record) {
    constexpr std::uint64_t MULTIPLIER = 0x9E3779B97F4A7C15; // 2^64 / golden ratio, odd
    constexpr std::size_t WORD = sizeof(std::uint64_t);
    std::uint64_t sum = record.size();
    std::uint64_t sum_of_sums = 0;
    const auto add = [&](const std::byte* word) {
        sum += scl::scl_load_le<std::uint64_t>(word);
        sum_of_sums += sum;
    };
    if (record.size() < WORD) return sum * MULTIPLIER;
    const std::byte* const last = record.data() + record.size() - WORD;
    for (const std::byte* at = record.data(); at < last; at += WORD) {
        add(at);
    }
    add(last);
    return (sum ^ (sum_of_sums << 32 | sum_of_sums >> 32)) * MULTIPLIER;
}

Record_comparer::Record_comparer(const scl::Scl_buffer& records, std::size_t field_count,
                                 scl::Scl_status& status)
    : stream_a_(records, status),
      stream_b_(records, status),
      a_(stream_a_, field_count),
      b_(stream_b_, field_count) {
    stream_a_.limit_read_ahead(READ_AHEAD_BYTES);
    stream_b_.limit_read_ahead(READ_AHEAD_BYTES);
}

bool Record_comparer::equal(std::uint64_t a, std::uint64_t b, scl::Scl_status& status) {
    stream_a_.set_position(a);
    stream_b_.set_position(b);
    // Each field begins with its count, so that equal bytes mean equal fields.
    const bool same = std::ranges::equal(a_.next(status), b_.next(status));
    return same && !status.has_failed();
}

} // namespace tla
