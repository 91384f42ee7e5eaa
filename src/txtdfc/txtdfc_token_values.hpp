#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace txtdfc {

// Replaces `values` by those of the text's tokens, in text order: the ones that the tokens of a
// codec's view have (Txt_token::crc of the whole text), without making a view. False when there is
// no text, that is, nothing or a byte order mark alone. Allocates nothing for words of up to
// Txt_text_store::FIRST_UNITS units but the list. Throws std::runtime_error for a text of more than
// TXTDFC_MAX_TOKENS tokens.
[[nodiscard]] bool txtdfc_token_values(std::u16string_view text,
                                       std::vector<std::uint64_t>& values);

} // namespace txtdfc
