#pragma once

#include "scl/scl_file_buffer.hpp"

#include <string_view>

namespace tla {

// The scratch file holds the records while a data set is made. It stands in the working directory,
// and goes when it is closed.
inline constexpr std::string_view SCRATCH_FILE_NAME = "mid_buf";

// Failures are those of creating a file with SCL_FILE_SCRATCH.
void open_scratch_file(scl::Scl_file_buffer& scratch, scl::Scl_status& status);

} // namespace tla
