#include "txtdfc/txtdfc_content_analyser.hpp"

#include "scl/scl_endian.hpp"
#include "scl/scl_unbuffered_istream.hpp"

#include <algorithm>
#include <array>

namespace txtdfc {

namespace {

constexpr std::size_t UNIT_BYTES = 2;

} // namespace

void Txtdfc_content_analyser::scan(const scl::Scl_buffer& content, scl::Scl_status& status) {
    const scl::Scl_unbuffered_istream stream(content, false, status, scl::Scl_eol::none);
    std::array<std::byte, CHUNK_BYTES> chunk; // NOLINT: not read before it is written
    std::uint64_t end = content.size(true, status) * UNIT_BYTES;
    while (end != 0 && !status.has_failed()) {
        const std::size_t wanted = std::min<std::uint64_t>(end, chunk.size());
        end -= wanted;
        const std::size_t count = stream.read_at(end, wanted, chunk.data(), status);
        if (count == 0 || status.has_failed()) return;
        if (!scan_units(std::span(chunk).first(count))) return;
    }
}

// False when nothing more need be seen.
bool Txtdfc_content_analyser::scan_units(std::span<const std::byte> bytes) {
    for (std::size_t at = bytes.size() - bytes.size() % UNIT_BYTES; at != 0; at -= UNIT_BYTES) {
        if (!take(scl::scl_load_le<char16_t>(&bytes[at - UNIT_BYTES]))) return false;
    }
    return true;
}

bool Txtdfc_content_analyser::take(char16_t unit) {
    if (state_ == State::lf) {
        if (unit == u'\r') state_ = State::cr_lf;
        return false;
    }
    if (unit != u'\n') {
        state_ = State::no_lf;
        return true;
    }
    ends_with_line_end_ = state_ == State::at_end;
    state_ = State::lf;
    return true;
}

} // namespace txtdfc
