#pragma once

#include "scl/scl_string.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace txtdfc {

// How the lines of a content end.
enum class Txtdfc_line_ending : std::uint32_t { lf = 2, crlf = 3 };

[[nodiscard]] constexpr std::u16string_view txtdfc_line_end(Txtdfc_line_ending style) {
    return style == Txtdfc_line_ending::lf ? scl::W_LF : scl::W_CRLF;
}

// Appends the text as lines: each LF and CR LF in it becomes `line_end`, and one is added after the
// last line if it has none. A lone CR stays, except as the very last unit.
void txtdfc_append_lines(std::u16string_view text, std::u16string_view line_end,
                         std::u16string& lines);

} // namespace txtdfc
