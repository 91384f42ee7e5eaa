#pragma once

#include "scl/scl_buffer.hpp"
#include "txtdfc/txtdfc_line_ends.hpp"

#include <cstdint>
#include <span>

namespace txtdfc {

// Finds out, backwards from a content's end, how its lines end. It reads chunks of CHUNK_BYTES, no
// further than to the unit before the last LF.
class Txtdfc_content_analyser {
public:
    static constexpr std::size_t CHUNK_BYTES = 512;

    // The status is that of reading. A chunk that cannot be read ends the scan.
    void scan(const scl::Scl_buffer& content, scl::Scl_status& status);

    // CR LF if that, or no LF at all, is what the last LF shows.
    [[nodiscard]] Txtdfc_line_ending line_ending() const {
        return state_ == State::lf ? Txtdfc_line_ending::lf : Txtdfc_line_ending::crlf;
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
