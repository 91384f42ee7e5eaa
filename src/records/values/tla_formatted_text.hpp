#pragma once

#include "records/values/field_descriptor.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace tla {

class Tla_formatter_base;

// A text as a formatter type stores it, made by the type's own formatter from the whole text, with
// a map of offsets back to the original: so what was found in the formatted text can be shown as it
// was written. Offsets and sizes are in 16-bit units. For example, of type SimpleNC:
//
//     original    N A I <U+0308> V E        offsets 0 1 2 3 4 5
//     formatted   n a   <U+00EF> v e        offsets 0 1   2 3 4
//
// Keeps the formatted text, and a pair of offsets for each piece that changed its length; not the
// original. Time is in proportion to the text. Throws std::bad_alloc.
class Tla_formatted_text {
public:
    // A type that is none of the three gives an empty text.
    Tla_formatted_text(std::u16string_view original, const Formatter_type_id& type);

    [[nodiscard]] std::u16string_view text() const { return text_; }

    // Maps an offset in the formatted text to the offset in the original of the character it came
    // from; removed text maps to the offset after it, the formatted text's end to the original's.
    // Inside a group of characters that changed as a whole (a letter and its marks) it maps to one
    // of them.
    [[nodiscard]] std::size_t original_offset(std::size_t formatted_offset) const;

private:
    // Where a piece that changed its length ends.
    struct Piece_end {
        std::size_t in_formatted;
        std::size_t in_original;
    };
    class Comparison;

    std::u16string text_;
    std::vector<Piece_end> pieces_; // both offsets ascend
};

} // namespace tla

#pragma GCC visibility pop
