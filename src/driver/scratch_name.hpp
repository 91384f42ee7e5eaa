#pragma once

#include <string>

namespace driver {

// The scratch file is replaced at the start of a run and removed at its end; an input or output
// that is the same file would be lost.

// True when the input's name, links followed, is the scratch file's entry.
[[nodiscard]] bool leads_to_scratch(const std::string& input_name);

// True when creating the output would make the scratch file's entry.
[[nodiscard]] bool would_be_scratch(const std::string& output_name);

} // namespace driver
