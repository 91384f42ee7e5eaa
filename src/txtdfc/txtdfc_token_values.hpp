#pragma once

#include "scl/text/scl_text_span.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/txt_token_walk.hpp"
#include "txtdfc/txtdfc_token_pool.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace txtdfc {

// The text behind a byte order mark, which is not part of it.
[[nodiscard]] inline scl::Scl_text_span<char16_t>
txtdfc_without_mark(scl::Scl_text_span<char16_t> text) {
    constexpr char16_t BYTE_ORDER_MARK = 0xFEFF;
    if (!text.empty() && *text.begin == BYTE_ORDER_MARK) ++text.begin;
    return text;
}
[[nodiscard]] inline scl::Scl_text_span<char> txtdfc_without_mark(scl::Scl_text_span<char> text) {
    return text; // ASCII holds none
}

// Calls `take` with the value of each token of the text, in order, without making a view. A text
// that is just a byte order mark has no tokens. Allocates nothing. Throws std::runtime_error behind
// TXTDFC_MAX_TOKENS tokens when the text has more.
//
// Twins: a codec's view has the same tokens, with the same values (Txt_token::crc of the whole
// text). Tested by Token_values.AreThoseOfTheView.
template <typename Unit, typename Take>
void txtdfc_each_token_value(scl::Scl_text_span<Unit> text, Take&& take) {
    const scl::Scl_text_span<Unit> tokens = txtdfc_without_mark(text);
    std::size_t left = TXTDFC_MAX_TOKENS;
    txt::txt_walk_tokens(tokens, [&](const Unit* begin, const Unit* end) {
        if (left-- == 0) throw_too_many_tokens(TXTDFC_MAX_TOKENS);
        take(txt::txt_token_value(scl::Scl_text_span<Unit>{begin, end}));
    });
}

// Replaces `values` by the values of the text's tokens. False when the text is empty or just a byte
// order mark. Throws as above.
[[nodiscard]] bool txtdfc_token_values(std::u16string_view text,
                                       std::vector<std::uint64_t>& values);

} // namespace txtdfc

#pragma GCC visibility pop
