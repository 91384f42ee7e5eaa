#pragma once

#include "scl/scl_buffered_istream.hpp"
#include "tla/key_index.hpp"

#include <cstdint>

namespace tla {

// Reads a key table's name and the first pair of each of its blocks, and leaves the stream, which
// is attached with this status, where the next table would begin if this one had `record_count`
// pairs. The end of the data sets SCL_STATUS_END_OF_DATA.
[[nodiscard]] Key_index read_key_index(scl::Scl_buffered_istream& in, std::uint32_t record_count,
                                       std::uint32_t block_size, scl::Scl_status& status);

} // namespace tla
