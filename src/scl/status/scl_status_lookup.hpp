#pragma once

#include "scl/status/scl_status.hpp"

#include <span>
#include <string>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace scl {

// The message files' names; they are source files of the project and compiled into the program.
inline constexpr std::string_view SCL_PLAT_STATUS_FILE_NAME = "plat_status.msg";
inline constexpr std::string_view SCL_UTIL_STATUS_FILE_NAME = "util_status.msg";

// Turns a status into text for display.
class Scl_status_lookup {
public:
    // False when there is no message file of one of the names. The texts are compiled into the
    // program, so that nothing is read and nothing kept.
    [[nodiscard]] static bool initialise_message_list(std::span<const std::string> file_names);

    // A code's message as its file has it, with %1 in its argument's place; empty for a code
    // without one. Takes no memory, so that memory exhausted can be told of.
    [[nodiscard]] static std::string_view message(Scl_status_code code);

    // Replaces `text` by one line per entry, the most recent first, without a line end after the
    // last: the code, its message with the argument in its place, and how often it came in a row. A
    // code without a message is shown alone. Control characters (C0, DEL, C1) and bytes that are no
    // UTF-8 in an argument are shown as \xNN, so that no name can steer a terminal.
    static void to_string(const Scl_status& status, std::u16string& text);
};

} // namespace scl

#pragma GCC visibility pop
