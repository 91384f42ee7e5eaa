#pragma once

#include "scl/status/scl_status.hpp"

#include <string>

namespace driver {

// The text goes to standard error as it stands, the line end to standard output.
void print_message(const std::string& text);

void print_usage();

// The status's text as a message; nothing at all when there are no message texts.
void print_status(const scl::Scl_status& status);

} // namespace driver
