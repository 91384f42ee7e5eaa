#pragma once

#include "scl/io/scl_buffer.hpp"
#include "tla/format/data_set_header.hpp"

#include <cstdint>
#include <vector>

namespace tla {

// The largest number of tokens of each field, from one pass over a file of version 2 that reads the
// counts and skips the values. Pushes TLA_STATUS_RECORD_END for a record that does not end where
// its fields do; leaves SCL_STATUS_END_OF_DATA and SCL_STATUS_READ_FAILED as the file reports them.
[[nodiscard]] std::vector<std::uint16_t> largest_token_counts(const scl::Scl_buffer& file,
                                                              const Tla_data_set_header& header,
                                                              scl::Scl_status& status);

} // namespace tla
