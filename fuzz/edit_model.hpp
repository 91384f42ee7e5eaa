#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

// A text to which edits are applied one by one, slowly: each unit of it knows what became of it.
// Offsets and lengths are in units.
class Edit_model {
public:
    explicit Edit_model(std::u16string_view content) : places_(content.size() + 1) {
        for (std::size_t i = 0; i < content.size(); ++i) {
            places_[i].unit = content[i];
        }
    }

    // False, and nothing is done, when the range overlaps an earlier one, or an insert is inside
    // the one or the other.
    bool edit(std::size_t offset, std::size_t length, std::u16string_view text);
    [[nodiscard]] bool is_edited() const { return is_edited_; }
    [[nodiscard]] std::u16string text() const;

private:
    // A unit of the content, and what comes before it; the last one stands for the end.
    struct Place {
        char16_t unit = 0;
        std::u16string inserted; // before everything else here
        bool has_insert = false;
        std::u16string replacement; // of the range that starts here
        std::size_t range = 0;      // 0 outside all ranges
    };

    [[nodiscard]] bool is_inside_range(std::size_t offset) const {
        return offset != 0 && places_[offset].range != 0 &&
               places_[offset].range == places_[offset - 1].range;
    }

    std::vector<Place> places_;
    std::size_t ranges_ = 0;
    bool is_edited_ = false;
};

// The text as lines that end in `line_end`, a CR alone being none but as the last unit.
[[nodiscard]] std::u16string lines_of(std::u16string_view text, std::u16string_view line_end);

// What of `text` goes when `count` visible characters are overwritten after `skip` ones, and how
// many there were.
struct Redacted {
    std::size_t begin;
    std::size_t end;
    std::size_t count;
};
[[nodiscard]] Redacted redaction_of(std::u16string_view text, std::size_t skip, std::size_t count);

// What becomes of a text of which nothing may be read any more.
[[nodiscard]] std::u16string safe_text_of(std::u16string_view text);

} // namespace fuzz
