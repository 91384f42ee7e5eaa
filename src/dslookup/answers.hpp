#pragma once

#include "data_set.hpp"

#include <string_view>

namespace dslookup {

// What is printed on standard output. A line that cannot be written throws std::runtime_error.

// Says what is in the file, after a pass over its records.
void print_contents(Data_set& data_set);

// Prints a line for the value; false when no record has it. White space around it does not count.
bool print_answer(Data_set& data_set, std::string_view key, std::string_view value);

// The same for each line of standard input, where a byte order mark may stand before the first.
// Throws std::runtime_error when standard input cannot be read.
bool print_answers_to_lines(Data_set& data_set, std::string_view key);

// To be called at the end: only then it is known that everything was written.
void finish_output();

} // namespace dslookup
