#pragma once

#include "records/values/field_descriptor.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace tla {

class Tla_formatter_base;

// A text in the form of a formatter type, as values of that type are stored: what the type's
// formatter makes of the whole text, by the formatter itself. Places in it lead back to the
// original, so that what was found in the form can be shown in its own spelling. Places are in
// 16-bit units.
//
// Keeps the form, and a pair of places only where a piece of the text changes its length; not the
// original. Time is in proportion to the text. Memory exhausted is thrown (std::bad_alloc).
class Tla_formatted_text {
public:
    // A type that is none of the three gives an empty text.
    Tla_formatted_text(std::u16string_view original, const Formatter_type_id& type);

    [[nodiscard]] std::u16string_view text() const { return text_; }

    // Where in the original that stands which became the character at a place of the form; the
    // original's size for the form's. Of what was removed, it leads behind. Inside a group of
    // characters that became another one as a whole (letters and their marks), it leads to one of
    // them.
    [[nodiscard]] std::size_t original_place(std::size_t place) const;

private:
    // Where a piece of another length ends.
    struct Piece_end {
        std::size_t in_form;
        std::size_t in_original;
    };
    class Comparison;

    std::u16string text_;
    std::vector<Piece_end> pieces_; // both places ascend
};

} // namespace tla

#pragma GCC visibility pop
