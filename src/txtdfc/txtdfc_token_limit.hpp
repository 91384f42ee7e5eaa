#pragma once

#include <cstddef>

namespace txtdfc {

// How many tokens a text may have.
inline constexpr std::size_t TXTDFC_MAX_TOKENS = 15000000;

// std::runtime_error, whose message names the limit.
[[noreturn]] void txtdfc_throw_too_many_tokens(std::size_t limit);

} // namespace txtdfc
