#include "txtdfc/line_ends.hpp"

#include "scl/io/scl_endian.hpp"
#include "scl/io/scl_istream.hpp"

#include <algorithm>
#include <array>

namespace txtdfc {

namespace {

// Writes text with its line ends replaced. A CR waits for the next unit, which tells whether it
// belongs to a line end. If that is another CR, both are written and neither waits: CR CR LF comes
// out as CR, CR and a line end.
class Line_writer {
public:
    Line_writer(std::u16string_view line_end, std::u16string& lines)
        : line_end_(line_end), lines_(lines) {}

    void add(char16_t unit) {
        // A CR that waits belongs to this line end, and goes with it.
        if (unit == u'\n') {
            end_line();
        } else if (cr_pending_) {
            lines_ += u'\r';
            add_plain(unit);
        } else if (unit == u'\r') {
            cr_pending_ = true;
        } else {
            add_plain(unit);
        }
    }

    // A CR that still waits is dropped: the line end added here takes its place.
    void finish() {
        if (!at_line_end_) end_line();
    }

private:
    void end_line() {
        lines_ += line_end_;
        cr_pending_ = false;
        at_line_end_ = true;
    }
    void add_plain(char16_t unit) {
        lines_ += unit;
        cr_pending_ = false;
        at_line_end_ = false;
    }

    std::u16string_view line_end_;
    std::u16string& lines_;
    bool cr_pending_ = false;
    bool at_line_end_ = false;
};

constexpr std::size_t UNIT_BYTES = 2;

} // namespace

void append_lines(std::u16string_view text, std::u16string_view line_end, std::u16string& lines) {
    Line_writer writer(line_end, lines);
    for (const char16_t unit : text) {
        writer.add(unit);
    }
    writer.finish();
}

void Content_analyser::scan(const scl::Scl_buffer& content, scl::Scl_status& status) {
    const scl::Scl_unbuffered_istream stream(content);
    std::array<std::byte, CHUNK_BYTES> chunk; // NOLINT: not read before it is written
    std::uint64_t end = content.size(false, status);
    end -= end % UNIT_BYTES; // a last byte alone is no unit, and would shift all others
    // From the back: the last line end decides, and it stands mostly in the last chunk.
    while (end != 0 && !status.has_failed()) {
        const std::size_t wanted = std::min<std::uint64_t>(end, chunk.size());
        end -= wanted;
        const std::size_t count = stream.read_at(end, wanted, chunk.data(), status);
        if (count == 0 || status.has_failed()) return;
        if (!scan_units(std::span(chunk).first(count))) return;
    }
}

// Scans back to front. False when the answer is known. Leaves out half a unit at the end, which a
// short read can give.
bool Content_analyser::scan_units(std::span<const std::byte> bytes) {
    for (std::size_t at = bytes.size() - bytes.size() % UNIT_BYTES; at != 0; at -= UNIT_BYTES) {
        if (!take(scl::scl_load_le<char16_t>(&bytes[at - UNIT_BYTES]))) return false;
    }
    return true;
}

// False when the answer is known: at the unit before the last LF.
bool Content_analyser::take(char16_t unit) {
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
