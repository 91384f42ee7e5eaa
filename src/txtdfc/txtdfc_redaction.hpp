#pragma once

#include <cstddef>
#include <string_view>

namespace txtdfc {

// What of a text is overwritten, in 16-bit units from `begin` up to `end`, and the number of
// visible characters in it: as many redaction characters take its place.
struct Txtdfc_redaction {
    std::size_t begin;
    std::size_t end;
    std::size_t count;

    [[nodiscard]] bool empty() const { return begin == end; }
};

// The `count` visible characters (code points) after the first `skip`, or as many as there are. The
// character that attaches to the last one skipped stays, and the one that attaches to the last one
// overwritten goes, but only one each; others count with what follows. Empty when nothing is left.
[[nodiscard]] Txtdfc_redaction txtdfc_find_redaction(std::u16string_view text, std::size_t skip,
                                                     std::size_t count);

} // namespace txtdfc
