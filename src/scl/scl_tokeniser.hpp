#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace scl {

// Splits text at separators.
class Scl_tokeniser {
public:
    // Every unit of `set` is a separator.
    void separators(std::u16string_view set) { separators_ = set; }

    // Replaces `pieces` by what stands between the separators, white space at both ends of each
    // piece removed; a piece that is then empty is left out.
    void tokenise(std::u16string_view text, std::vector<std::u16string>& pieces) const;

private:
    std::u16string separators_;
};

} // namespace scl
