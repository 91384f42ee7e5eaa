#include "txtdfc/txtdfc_line_ends.hpp"

namespace txtdfc {

namespace {

// Of a CR only the unit after it tells whether it belongs to a line end; a CR that follows a lone
// one is not looked at in that way again.
class Line_writer {
public:
    Line_writer(std::u16string_view line_end, std::u16string& lines)
        : line_end_(line_end), lines_(lines) {}

    void add(char16_t unit) {
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

} // namespace

void txtdfc_append_lines(std::u16string_view text, std::u16string_view line_end,
                         std::u16string& lines) {
    Line_writer writer(line_end, lines);
    for (const char16_t unit : text) {
        writer.add(unit);
    }
    writer.finish();
}

} // namespace txtdfc
