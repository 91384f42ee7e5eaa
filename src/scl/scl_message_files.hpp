#pragma once

#include <array>
#include <string_view>

namespace scl::impl {

struct Scl_message_file {
    std::string_view name;
    std::string_view text;
};

// Made from the .msg files when the project is configured.
extern const std::array<Scl_message_file, 2> SCL_MESSAGE_FILES;

} // namespace scl::impl
