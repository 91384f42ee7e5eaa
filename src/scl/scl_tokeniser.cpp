#include "scl/scl_tokeniser.hpp"

#include "scl/scl_string.hpp"

namespace scl {

void Scl_tokeniser::tokenise(std::u16string_view text, std::vector<std::u16string>& pieces) const {
    pieces.clear();
    for (;;) {
        const std::size_t end = text.find_first_of(separators_);
        const std::u16string_view piece = scl_trimmed(text.substr(0, end));
        if (!piece.empty()) pieces.emplace_back(piece);
        if (end == std::u16string_view::npos) return;
        text.remove_prefix(end + 1);
    }
}

} // namespace scl
