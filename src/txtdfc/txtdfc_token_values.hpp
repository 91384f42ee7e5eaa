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

// A byte order mark at the front is no part of the text.
[[nodiscard]] inline scl::Scl_text_span<char16_t>
txtdfc_without_mark(scl::Scl_text_span<char16_t> text) {
    constexpr char16_t BYTE_ORDER_MARK = 0xFEFF;
    if (!text.empty() && *text.begin == BYTE_ORDER_MARK) ++text.begin;
    return text;
}
[[nodiscard]] inline scl::Scl_text_span<char> txtdfc_without_mark(scl::Scl_text_span<char> text) {
    return text; // ASCII holds none
}

// Hands the values of a text's tokens to `take`, in text order, without making a view. A text of a
// byte order mark alone has none. Allocates nothing. Throws std::runtime_error after
// TXTDFC_MAX_TOKENS tokens if the text has more.
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

// Replaces `values` by those of the text's tokens. False when there is no text, that is, nothing or
// a byte order mark alone. Throws as above.
[[nodiscard]] bool txtdfc_token_values(std::u16string_view text,
                                       std::vector<std::uint64_t>& values);

} // namespace txtdfc

#pragma GCC visibility pop
