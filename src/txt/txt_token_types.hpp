#pragma once

#include "scl/crc/scl_crc64.hpp"
#include "scl/text/scl_text_span.hpp"
#include "scl/text/scl_unicode.hpp"

#include <cstdint>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace txt {

// Which form of a token's text to use.
enum class Txt_text_form : std::uint32_t {
    whole = 0,   // as it stands; its length counts 16-bit units
    visible = 1, // without the characters that are not visible by themselves; counts characters
};

// A token's type depends on its first character that is visible by itself.
inline constexpr std::uint32_t TXT_TOKEN_UNCLASSIFIED = 0x1000001; // also the empty placeholder
inline constexpr std::uint32_t TXT_TOKEN_WORD = 0x1000002;
inline constexpr std::uint32_t TXT_TOKEN_NUMBER = 0x1000003;
inline constexpr std::uint32_t TXT_TOKEN_PUNCTUATION = 0x1000004;
inline constexpr std::uint32_t TXT_TOKEN_SYMBOL = 0x1000005;

// The type that a class of character gives.
[[nodiscard]] constexpr std::uint32_t
txt_token_type(scl::Scl_unicode_code_point_type first_visible) {
    using Class = scl::Scl_unicode_code_point_type;
    const bool named = first_visible >= Class::letter && first_visible <= Class::punctuation;
    return named ? TXT_TOKEN_UNCLASSIFIED + static_cast<std::uint32_t>(first_visible)
                 : TXT_TOKEN_SYMBOL;
}
static_assert(txt_token_type(scl::Scl_unicode_code_point_type::letter) == TXT_TOKEN_WORD);
static_assert(txt_token_type(scl::Scl_unicode_code_point_type::number) == TXT_TOKEN_NUMBER);
static_assert(txt_token_type(scl::Scl_unicode_code_point_type::punctuation) ==
              TXT_TOKEN_PUNCTUATION);

// The value that a data set file stores for a token with this text: the CRC-64/XZ of its 16-bit
// units, little-endian, without a terminator; 0 for the empty text.
[[nodiscard]] inline std::uint64_t txt_token_value(std::u16string_view text) {
    if (text.empty()) return 0;
    return scl::Scl_crc64::calculate_units(text);
}

// The same of a text that goes on with `more`, from the value of what is before.
[[nodiscard]] inline std::uint64_t txt_extended_value(std::uint64_t value,
                                                      std::u16string_view more) {
    return scl::Scl_crc64::calculate_units(more, ~value);
}

// The same for a text of either unit; ASCII bytes are widened to 16-bit units.
[[nodiscard]] inline std::uint64_t txt_token_value(scl::Scl_text_span<char16_t> text) {
    return txt_token_value(text.view());
}
[[nodiscard]] inline std::uint64_t txt_token_value(scl::Scl_text_span<char> text) {
    return scl::Scl_crc64::calculate_widened(text.begin, text.size());
}

} // namespace txt

#pragma GCC visibility pop
