#include "records/values/tla_formatted_text.hpp"

#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_normalize.hpp"

#include <algorithm>
#include <iterator>

namespace tla {

namespace {

// Units formatted in one call where nothing joins. More would mean fewer calls, but also more to
// repeat unit by unit where one piece changes its length.
constexpr std::size_t BLOCK_UNITS = 64;

// How many units the two texts have in common at their ends.
std::size_t common_end(std::u16string_view a, std::u16string_view b) {
    const auto differ = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend());
    return static_cast<std::size_t>(differ.first - a.rbegin());
}

} // namespace

// Formats the original piece by piece and compares lengths. Pieces are formatted without their
// neighbours, which only the final sigma depends on; both sigmas have the same length.
class Tla_formatted_text::Comparison {
public:
    Comparison(std::u16string_view original, const Tla_formatter_base& formatter,
               std::vector<Piece_end>& pieces)
        : original_(original),
          formatter_(formatter),
          pieces_(pieces),
          is_well_formed_(scl::scl_can_normalize(original)) {}

    void run() {
        while (original_offset_ < original_.size()) {
            const std::u16string_view block = original_.substr(original_offset_, BLOCK_UNITS);
            if (scl::scl_is_plain(block)) {
                take_plain(block);
            } else {
                take_joined(original_offset_ + block.size());
            }
        }
    }

private:
    // Leaves the block's last character for the next block: it may join with what follows.
    void take_plain(std::u16string_view block) {
        const bool is_end = original_offset_ + block.size() == original_.size();
        if (!is_end) block.remove_suffix(1);
        if (form_of(block).size() == block.size()) return pass(block.size(), block.size());
        for (std::size_t left = block.size(); left > 0; --left) {
            take(1);
        }
    }

    // A text that is not well-formed is never normalised: nothing joins in it.
    void take_joined(std::size_t end) {
        while (original_offset_ < end) {
            take(is_well_formed_ ? scl::scl_joined_length(original_, original_offset_)
                                 : scl::scl_character_length(original_, original_offset_));
        }
    }

    // Both may end alike, and a word may begin in that common end: the map keeps it exact.
    void take(std::size_t length) {
        const std::u16string_view piece = original_.substr(original_offset_, length);
        const std::u16string_view form = form_of(piece);
        if (form.size() != length) {
            const std::size_t alike = common_end(piece, form);
            pieces_.push_back(
                {formatted_offset_ + form.size() - alike, original_offset_ + length - alike});
        }
        pass(length, form.size());
    }

    std::u16string_view form_of(std::u16string_view piece) {
        formatter_.format(piece, form_, !is_well_formed_);
        return form_;
    }

    void pass(std::size_t original_length, std::size_t form_length) {
        original_offset_ += original_length;
        formatted_offset_ += form_length;
    }

    std::u16string_view original_;
    const Tla_formatter_base& formatter_;
    std::vector<Piece_end>& pieces_;
    bool is_well_formed_;
    std::size_t original_offset_ = 0;
    std::size_t formatted_offset_ = 0;
    std::u16string form_; // of the current piece
};

Tla_formatted_text::Tla_formatted_text(std::u16string_view original,
                                       const Formatter_type_id& type) {
    const auto formatter = tla_create_formatter(type);
    if (formatter == nullptr) return;
    formatter->format(original, text_, false);
    Comparison(original, *formatter, pieces_).run();
}

// Behind a changed piece both texts run side by side, up to the end of the next changed piece.
std::size_t Tla_formatted_text::original_offset(std::size_t formatted_offset) const {
    const auto next =
        std::ranges::upper_bound(pieces_, formatted_offset, {}, &Piece_end::in_formatted);
    if (next == pieces_.begin()) {
        return next == pieces_.end() ? formatted_offset
                                     : std::min(formatted_offset, next->in_original);
    }
    const Piece_end& last = *std::prev(next);
    const std::size_t same = last.in_original + (formatted_offset - last.in_formatted);
    return next == pieces_.end() ? same : std::min(same, next->in_original);
}

} // namespace tla
