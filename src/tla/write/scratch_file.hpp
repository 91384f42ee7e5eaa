#pragma once

#include "scl/io/scl_file_buffer.hpp"

#include <string>
#include <string_view>

namespace tla {

// The scratch file holds the records while a data set is made. It stands in the working directory,
// replaces what has its name there, and goes when it is closed.
inline constexpr std::string_view TLA_SCRATCH_FILE_NAME = "mid_buf";

// Failures are those of creating a file with SCL_FILE_SCRATCH: SCL_STATUS_CREATE_FAILED.
void tla_open_scratch_file(scl::Scl_file_buffer& scratch, scl::Scl_status& status);

// An input or output that is the scratch file itself would be lost; these tell in time. Names are
// bytes as the system takes them.

// True when the input's name, links followed, is the scratch file's entry.
[[nodiscard]] bool tla_leads_to_scratch(const std::string& input_name);

// True when creating the output would make the scratch file's entry.
[[nodiscard]] bool tla_would_be_scratch(const std::string& output_name);

} // namespace tla
