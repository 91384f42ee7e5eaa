#pragma once

#include "records/values/field_descriptor.hpp"
#include "records/values/tla_value_formatter.hpp"
#include "scl/status/scl_status.hpp"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tla {

// Makes the token values of values to look up. Keep one for many lookups: it reuses its memory.
class Tla_value_tokeniser {
public:
    // Replaces `values` by the token values that a record would have in a field of that type. The
    // value is not trimmed, as an input file's fields are. Pushes TLA_STATUS_NO_TOKENS when nothing
    // is left of the value, and for a type that is none of the three. Throws std::runtime_error for
    // a value of more than 15,000,000 tokens.
    void tokenise(std::u16string_view value, const Formatter_type_id& type,
                  std::vector<std::uint64_t>& values, scl::Scl_status& status);

private:
    [[nodiscard]] bool narrow(std::u16string_view value);

    Tla_padded_buffer<char> narrow_;
    Tla_value_buffer buffer_;
};

} // namespace tla
