#pragma once

#include <string>
#include <string_view>

namespace dsscan {

// UTF-8, with bytes that are none, as it is shown in a line: a stretch of white space is one blank,
// a control character or a byte of its own \xNN for each of its bytes, " and \ are \" and \\. Of
// more than 100 characters the first 100 and U+2026; `is_whole` says that the text is no beginning
// only.
[[nodiscard]] std::string shown_in_line(std::string_view text, bool is_whole = true);

// The same without a bound: the name of a text, by which it is to be found again.
[[nodiscard]] std::string shown_name(std::string_view name);

// A string of JSON with its quotation marks; bytes that are no UTF-8 are U+FFFD.
[[nodiscard]] std::string json_string(std::string_view text);

} // namespace dsscan
