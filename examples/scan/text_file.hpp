#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace scan {

// What is wrong with one file; the message begins with its name.
class File_fault : public std::runtime_error {
public:
    File_fault(std::string_view name, std::string_view what);
};

// Text as it is shown: each control character, and each byte that was no UTF-8, as \xNN, so that no
// name or text can steer a terminal or break a line.
[[nodiscard]] std::string shown(std::u16string_view text);
[[nodiscard]] std::string shown(std::string_view bytes);

// A file's text as UTF-16, without a byte order mark at its front; "-" is standard input. Throws
// File_fault for a file that cannot be read or is no UTF-8.
[[nodiscard]] std::u16string read_text(const std::string& name);

} // namespace scan
