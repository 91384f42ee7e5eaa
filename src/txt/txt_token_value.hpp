#pragma once

#include "scl/scl_crc64.hpp"

#include <cstdint>
#include <string_view>

namespace txt {

// What a data set file holds of a token with this text: CRC-64/XZ over the text's 16-bit units,
// little-endian, without a terminator; 0 for the empty text.
[[nodiscard]] inline std::uint64_t txt_token_value(std::u16string_view text) {
    if (text.empty()) return 0;
    return scl::Scl_crc64::calculate(text.data(), text.size() * sizeof(char16_t),
                                     scl::Scl_crc64::INITIAL);
}

} // namespace txt
