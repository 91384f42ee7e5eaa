#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tla {

// A text as somebody may have meant it, and where each of its units stands in the text as written.
template <typename Unit>
struct Reading {
    std::basic_string<Unit> text;
    std::vector<std::uint32_t> origins; // of the units, ascending

    void clear() {
        text.clear();
        origins.clear();
    }
};

// The two readings beside the one as written. Both are told of ASCII bytes and of UTF-16 units, by
// one code. docs/scanning.md tells the rules for readers.

// Loosened: characters that show nothing are left out, the forms of the apostrophe and of the
// hyphen are one each, marks that join two words are blanks, and so is the end of a genitive:
// "ann.smith’s" is "ann smith". False when nothing changes; `to` is of no use then.
[[nodiscard]] bool loosen(std::string_view text, Reading<char>& to);
[[nodiscard]] bool loosen(std::u16string_view text, Reading<char16_t>& to);

// Parted, of a loosened text, in its place: an apostrophe inside a word is a blank. "l'agence" is
// "l agence". False when nothing changes.
[[nodiscard]] bool part(std::string& loosened);
[[nodiscard]] bool part(std::u16string& loosened);

} // namespace tla
