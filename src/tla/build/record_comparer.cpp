#include "tla/build/record_comparer.hpp"

#include <algorithm>

namespace tla {

namespace {

constexpr std::size_t READ_AHEAD_BYTES = 4096;

} // namespace

Record_comparer::Record_comparer(const scl::Scl_buffer& records, std::size_t field_count,
                                 scl::Scl_status& status)
    : stream_a_(records, false, status, scl::Scl_eol::none),
      stream_b_(records, false, status, scl::Scl_eol::none),
      a_(stream_a_, field_count),
      b_(stream_b_, field_count) {
    // Records far apart are compared as often as neighbours: read little around each.
    stream_a_.limit_read_ahead(READ_AHEAD_BYTES);
    stream_b_.limit_read_ahead(READ_AHEAD_BYTES);
}

bool Record_comparer::equal(std::uint64_t a, std::uint64_t b, scl::Scl_status& status) {
    stream_a_.set_position(a);
    stream_b_.set_position(b);
    // The bytes tell where each field ends: equal bytes are equal fields.
    const bool same = std::ranges::equal(a_.next(status), b_.next(status));
    return same && !status.has_failed();
}

} // namespace tla
