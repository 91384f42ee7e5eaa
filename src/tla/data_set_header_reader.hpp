#pragma once

#include "scl/scl_buffered_istream.hpp"
#include "tla/data_set_header.hpp"

#include <string_view>

namespace tla {

// Reads the header from the front of a file. Numbers replace those in `header`, fields are added to
// it; after a failure it keeps what was read before.
//
// Pushes TLA_STATUS_NO_DATA_SET, with `file_name`, for another magic, and replaces the end of the
// data by it; pushes TLA_STATUS_VERSION, with `file_name`, for another version than the latest
// unless any will do; sets TLA_STATUS_FIELD_LIST for a malformed field list.
void read_data_set_header(const scl::Scl_buffer& file, std::u16string_view file_name,
                          bool accept_any_version, Data_set_header& header,
                          scl::Scl_status& status);

} // namespace tla
