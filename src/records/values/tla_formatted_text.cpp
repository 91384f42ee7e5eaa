#include "records/values/tla_formatted_text.hpp"

#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_normalize.hpp"

#include <algorithm>
#include <iterator>

namespace tla {

namespace {

// Units that are brought into form together where nothing joins: few calls for most text, and few
// to repeat where a piece does change its length.
constexpr std::size_t BLOCK_UNITS = 64;

std::size_t common_end(std::u16string_view a, std::u16string_view b) {
    const auto differ = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend());
    return static_cast<std::size_t>(differ.first - a.rbegin());
}

} // namespace

// Goes through the original piece by piece, each brought into form by itself. Only a piece's length
// is asked for: a sigma that looks at its neighbours to be the final one is as long as the other.
class Tla_formatted_text::Comparison {
public:
    Comparison(std::u16string_view original, const Tla_formatter_base& formatter,
               std::vector<Piece_end>& pieces)
        : original_(original),
          formatter_(formatter),
          pieces_(pieces),
          is_well_formed_(scl::scl_can_normalize(original)) {}

    void run() {
        while (original_place_ < original_.size()) {
            const std::u16string_view block = original_.substr(original_place_, BLOCK_UNITS);
            if (scl::scl_is_plain(block)) {
                take_plain(block);
            } else {
                take_joined(original_place_ + block.size());
            }
        }
    }

private:
    // The last character of a block may join with what follows, so that it is left for the next.
    void take_plain(std::u16string_view block) {
        const bool is_end = original_place_ + block.size() == original_.size();
        if (!is_end) block.remove_suffix(1);
        if (form_of(block).size() == block.size()) return pass(block.size(), block.size());
        for (std::size_t left = block.size(); left > 0; --left) {
            take(1);
        }
    }

    // A text that is not well-formed is never normalised, so that nothing joins in it.
    void take_joined(std::size_t end) {
        while (original_place_ < end) {
            take(is_well_formed_ ? scl::scl_joined_length(original_, original_place_)
                                 : scl::scl_character_length(original_, original_place_));
        }
    }

    // A piece and its form may still end alike, and have words beginning there.
    void take(std::size_t length) {
        const std::u16string_view piece = original_.substr(original_place_, length);
        const std::u16string_view form = form_of(piece);
        if (form.size() != length) {
            const std::size_t alike = common_end(piece, form);
            pieces_.push_back(
                {form_place_ + form.size() - alike, original_place_ + length - alike});
        }
        pass(length, form.size());
    }

    std::u16string_view form_of(std::u16string_view piece) {
        formatter_.format(piece, form_, !is_well_formed_);
        return form_;
    }

    void pass(std::size_t original_length, std::size_t form_length) {
        original_place_ += original_length;
        form_place_ += form_length;
    }

    std::u16string_view original_;
    const Tla_formatter_base& formatter_;
    std::vector<Piece_end>& pieces_;
    bool is_well_formed_;
    std::size_t original_place_ = 0;
    std::size_t form_place_ = 0;
    std::u16string form_; // of the piece at hand
};

Tla_formatted_text::Tla_formatted_text(std::u16string_view original,
                                       const Formatter_type_id& type) {
    const Tla_formatter_base* const formatter = tla_shared_formatter(type);
    if (formatter == nullptr) return;
    formatter->format(original, text_, false);
    Comparison(original, *formatter, pieces_).run();
}

// From the last changed piece on, both texts go on alike, up to where the next changed piece ends.
std::size_t Tla_formatted_text::original_place(std::size_t place) const {
    const auto next = std::ranges::upper_bound(pieces_, place, {}, &Piece_end::in_form);
    if (next == pieces_.begin()) {
        return next == pieces_.end() ? place : std::min(place, next->in_original);
    }
    const Piece_end& last = *std::prev(next);
    const std::size_t same = last.in_original + (place - last.in_form);
    return next == pieces_.end() ? same : std::min(same, next->in_original);
}

} // namespace tla
