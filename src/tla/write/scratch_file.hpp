#pragma once

#include "scl/io/scl_file_buffer.hpp"

#include <string>
#include <string_view>

namespace tla {

// The scratch file holds the records while a data set is made. It is created in the working
// directory, replaces an entry of its name, and is removed when it is closed.
inline constexpr std::string_view TLA_SCRATCH_FILE_NAME = "mid_buf";

// Pushes SCL_STATUS_CREATE_FAILED when the file cannot be created.
void tla_open_scratch_file(scl::Scl_file_buffer& scratch, scl::Scl_status& status);

// An input or output that is the scratch file itself would be destroyed. These two find that out
// before anything is opened. Names are bytes as the system takes them.

// True when the input's name, links followed, is the scratch file's entry.
[[nodiscard]] bool tla_leads_to_scratch(const std::string& input_name);

// True when creating the output would make the scratch file's entry.
[[nodiscard]] bool tla_would_be_scratch(const std::string& output_name);

} // namespace tla
