#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace scl {

// Wide text is UTF-16 in 16-bit units, narrow text UTF-8 in bytes. The conversions lose nothing: a
// byte that is not part of well-formed UTF-8 becomes the one unit U+DC00 + byte, and such a unit,
// when it is not the second half of a surrogate pair, becomes that byte again. So any bytes come
// back as they were. Other lone surrogates become U+FFFD in narrow text. A destination keeps its
// capacity. Memory exhausted is the only failure (std::bad_alloc).

// A position past the end of a text.
inline constexpr std::size_t SCL_NPOS = static_cast<std::size_t>(-1);

inline constexpr std::u16string_view W_SEMICOLON = u";";
inline constexpr std::u16string_view W_COMMA = u",";
inline constexpr std::u16string_view W_EMPTY;
inline constexpr std::u16string_view W_LF = u"\n";
inline constexpr std::u16string_view W_CRLF = u"\r\n";

// Appends the converted text.
void scl_string_append(std::u16string& wide, std::string_view narrow);
void scl_string_append(std::string& narrow, std::u16string_view wide);

// Converts into memory of the caller's and returns the number of units. No byte becomes more than
// one unit: `wide` has room for narrow.size() of them.
[[nodiscard]] std::size_t scl_convert(std::string_view narrow, char16_t* wide);

// Replaces `wide` by the converted text.
void scl_stow(std::string_view narrow, std::u16string& wide);

// Replaces `narrow` by the converted text, or appends to it when `replace` is false.
void scl_wtos(std::u16string_view wide, std::string& narrow, bool replace);

// Replaces `narrow` by the converted text.
void scl_utf16_to_utf8(std::u16string_view wide, std::string& narrow);

// The text as it may be shown: control characters (C0, DEL, C1) and bytes that were no UTF-8 become
// \xNN, so that no name can steer a terminal or break a line. The bell is \x07.
[[nodiscard]] std::u16string scl_shown(std::u16string_view text);
// The same from UTF-8 to UTF-8.
[[nodiscard]] std::string scl_shown(std::string_view text);

// The text without the white space (property White_Space) at its two ends.
[[nodiscard]] std::u16string_view scl_trimmed(std::u16string_view text);

// Removes the white space at both ends.
void scl_trim(std::u16string& text);

// The code point at `index` (in 16-bit units), which is moved past it: by two units for a
// surrogate pair. A lone surrogate is the code point of its own value. When `index` is already at
// or past the end, it becomes SCL_NPOS and the result is 0.
[[nodiscard]] char32_t scl_utf16_to_utf32_char(std::u16string_view text, std::size_t& index);

// Splits text at separators.
class Scl_tokeniser {
public:
    // Every unit of `set` is a separator.
    void separators(std::u16string_view set) { separators_ = set; }

    // Replaces `pieces` by what is between the separators, white space at both ends of each piece
    // removed; a piece that is then empty is left out.
    void tokenise(std::u16string_view text, std::vector<std::u16string>& pieces) const;

private:
    std::u16string separators_;
};

} // namespace scl

#pragma GCC visibility pop
