#pragma once

#include "scl/text/scl_text_span.hpp"

#include <cstddef>

namespace txt {

// Of the texts that are tried: most names are shorter.
inline constexpr std::size_t TXT_PLAIN_RUN_BYTES = 32;

// Converts a value of UTF-8 when it is a plain run: a run of letters, digits and connectors
// (txt_is_run) of one or two bytes each, Latin to Arabic, that normalisation leaves alone but for
// composing letters with their marks. Lowers the letters when `lowers` is true. Gives the number of
// units, which are one token; 0 for any other text, which has to go the general way. `to` has room
// for TXT_PLAIN_RUN_BYTES units.
//
// Twins: this, and converting, formatting and walking over the tokens one after the other. Tested
// by Value_tokens.OfALookupAreThoseOfARecord and Value_tokens.OfEveryCharacterAreThoseOfALookup, as
// lookups go the general way, and by Plain_run.EndsWithItsLastCharacter.
[[nodiscard]] std::size_t txt_convert_plain_run(scl::Scl_text_span<char> text, bool lowers,
                                                char16_t* to);

} // namespace txt
