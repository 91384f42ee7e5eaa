#include "tla/record_comparer.hpp"

#include <algorithm>

namespace tla {

namespace {

constexpr std::size_t READ_AHEAD_BYTES = 4096;

} // namespace

Record_comparer::Record_comparer(const scl::Scl_buffer& records, std::size_t field_count,
                                 scl::Scl_status& status)
    : field_count_(field_count),
      stream_a_(records, false, status, scl::Scl_eol::none),
      stream_b_(records, false, status, scl::Scl_eol::none),
      a_(stream_a_),
      b_(stream_b_) {
    // Records far apart are compared as often as neighbours: read little around each.
    stream_a_.limit_read_ahead(READ_AHEAD_BYTES);
    stream_b_.limit_read_ahead(READ_AHEAD_BYTES);
}

bool Record_comparer::equal(std::uint64_t a, std::uint64_t b, scl::Scl_status& status) {
    stream_a_.set_position(a);
    stream_b_.set_position(b);
    bool same = true;
    for (std::size_t field = 0; same && field < field_count_; ++field) {
        same = fields_equal(status);
    }
    return same;
}

bool Record_comparer::fields_equal(scl::Scl_status& status) {
    const std::uint16_t count = a_.read_count(status);
    if (count != b_.read_count(status) || status.has_failed()) return false;
    const std::span<const std::byte> values = a_.read_values(count, status);
    return std::ranges::equal(values, b_.read_values(count, status)) && !status.has_failed();
}

} // namespace tla
