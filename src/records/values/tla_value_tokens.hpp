#pragma once

#include "records/values/field_descriptor.hpp"
#include "records/values/tla_value_formatter.hpp"
#include "scl/status/scl_status.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/txt_token_walk.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tla {

// Hands the token values of a formatted text to `take`, in text order. Most values are one short
// run of letters or digits and so one token: that is seen in one step. Throws std::runtime_error
// for a text of more than 15,000,000 tokens.
template <typename Unit, typename Take>
void tla_each_token_value(scl::Scl_text_span<Unit> formatted, Take&& take) {
    if (txt::txt_is_short_run(formatted)) return take(txt::txt_token_value(formatted));
    txtdfc::txtdfc_each_token_value(formatted, take);
}

// Makes the token values of values to look up. Keep one for many lookups: it reuses its memory.
class Tla_value_tokeniser {
public:
    // Replaces `values` by the token values that a record would have in a field of that type. The
    // value is not trimmed, as an input file's fields are. Pushes TLA_STATUS_NO_TOKENS when nothing
    // is left of the value, and for a type that is none of the three. Throws as above.
    void tokenise(std::u16string_view value, const Formatter_type_id& type,
                  std::vector<std::uint64_t>& values, scl::Scl_status& status);

private:
    [[nodiscard]] bool narrow(std::u16string_view value);

    Tla_padded_buffer<char> narrow_;
    Tla_value_buffer buffer_;
};

} // namespace tla
