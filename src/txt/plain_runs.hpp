#pragma once

#include "scl/text/scl_text_span.hpp"

#include <cstddef>
#include <cstdint>

namespace txt {

// Of the texts that are tried: most names are shorter. At most half as many units are gone on with.
inline constexpr std::size_t TXT_PLAIN_RUN_BYTES = 32;

// The token value of a UTF-8 text that is a plain run: a run of letters, digits and connectors
// (txt_is_run) of one or two bytes each, Latin to Arabic, that normalisation leaves alone but for
// composing letters with their marks. Of its small letters when `lowers` is true. 0 for any other
// text, which has to go the general way.
//
// Twins: this, and converting, formatting and walking over the tokens one after the other. Tested
// by Value_tokens.OfALookupAreThoseOfARecord and Value_tokens.OfEveryCharacterAreThoseOfALookup, as
// lookups go the general way, and by Plain_run.EndsWithItsLastCharacter.
[[nodiscard]] std::uint64_t txt_plain_run_value(scl::Scl_text_span<char> text, bool lowers);

} // namespace txt
