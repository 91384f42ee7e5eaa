#include "scl/scl_status_arg.hpp"

#include "scl/scl_string.hpp"

namespace scl {

Scl_wstring_status_arg::Scl_wstring_status_arg(std::string_view narrow) {
    scl_string_append(text_, narrow);
}

} // namespace scl
