#pragma once

#include "scl/io/scl_buffer.hpp"
#include "scl/text/scl_string.hpp"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace txtdfc {

// How the lines of a content end.
enum class Line_ending : std::uint32_t { lf = 2, crlf = 3 };

[[nodiscard]] constexpr std::u16string_view line_end_of(Line_ending style) {
    return style == Line_ending::lf ? scl::W_LF : scl::W_CRLF;
}

// Appends the text as lines: each LF and CR LF becomes `line_end`, and the last line gets one if it
// has none. A lone CR stays, except as the very last unit, where it counts as half a line end.
void append_lines(std::u16string_view text, std::u16string_view line_end, std::u16string& lines);

// Finds out how the lines of a content end. The last LF decides, so the scan goes backwards, from
// the end to the unit before that LF.
class Content_analyser {
public:
    static constexpr std::size_t CHUNK_BYTES = 512; // most last lines fit

    // A chunk that cannot be read ends the scan, with the code of the buffer in the status
    // (SCL_STATUS_READ_FAILED for a file).
    void scan(const scl::Scl_buffer& content, scl::Scl_status& status);

    // LF if the last LF has no CR before it; CR LF otherwise, and without any LF.
    [[nodiscard]] Line_ending line_ending() const {
        return state_ == State::lf ? Line_ending::lf : Line_ending::crlf;
    }
    // Whether the last unit is LF.
    [[nodiscard]] bool ends_with_line_end() const { return ends_with_line_end_; }

private:
    enum class State : std::uint8_t { at_end, no_lf, lf, cr_lf };

    [[nodiscard]] bool scan_units(std::span<const std::byte> bytes);
    [[nodiscard]] bool take(char16_t unit);

    State state_ = State::at_end; // of the units seen so far, the last one of them first
    bool ends_with_line_end_ = false;
};

} // namespace txtdfc

#pragma GCC visibility pop
