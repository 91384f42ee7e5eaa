#pragma once

#include "data_set.hpp"
#include "key_search.hpp"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace scan {

// Standard output cannot be written, which ends a scan.
class Output_fault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Prints the records that a text holds, a line each, to standard output: those of which a key and
// at least `least` fields in all occur. True when there is one. Throws File_fault for the data
// set, Output_fault, std::length_error for a text of too many words.
bool report_text(Data_set& data_set, const std::string& name, std::u16string_view text,
                 std::size_t least);

// Sees to it that all lines are out; throws Output_fault when they cannot be written.
void finish_output();

} // namespace scan
