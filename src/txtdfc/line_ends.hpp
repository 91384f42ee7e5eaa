#pragma once

#include "scl/io/scl_buffer.hpp"
#include "scl/text/scl_string.hpp"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace txtdfc {

// How the lines of a content end.
enum class Line_ending : std::uint32_t { lf = 2, crlf = 3 };

[[nodiscard]] constexpr std::u16string_view line_end_of(Line_ending style) {
    return style == Line_ending::lf ? scl::W_LF : scl::W_CRLF;
}

// Appends the text as lines: each LF and CR LF in it becomes `line_end`, and one is added after the
// last line if it has none. A lone CR stays, except as the very last unit.
void append_lines(std::u16string_view text, std::u16string_view line_end, std::u16string& lines);

// Finds out, backwards from a content's end, how its lines end. It reads chunks of CHUNK_BYTES, no
// further than to the unit before the last LF.
class Content_analyser {
public:
    static constexpr std::size_t CHUNK_BYTES = 512;

    // The status is that of reading. A chunk that cannot be read ends the scan.
    void scan(const scl::Scl_buffer& content, scl::Scl_status& status);

    // CR LF if that, or no LF at all, is what the last LF shows.
    [[nodiscard]] Line_ending line_ending() const {
        return state_ == State::lf ? Line_ending::lf : Line_ending::crlf;
    }
    // Whether the last unit is LF.
    [[nodiscard]] bool ends_with_line_end() const { return ends_with_line_end_; }

private:
    enum class State : std::uint8_t { at_end, no_lf, lf, cr_lf };

    [[nodiscard]] bool scan_units(std::span<const std::byte> bytes);
    [[nodiscard]] bool take(char16_t unit);

    State state_ = State::at_end;
    bool ends_with_line_end_ = false;
};

} // namespace txtdfc
