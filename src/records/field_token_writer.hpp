#pragma once

#include "scl/scl_ostream.hpp"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tla {

// Turns formatted values into token values: the CRC-64 of each word, number, punctuation mark and
// symbol of the text. The list of values is kept from one value to the next.
class Field_token_writer {
public:
    // Writes the field as a record holds it: the token count as a big-endian u16, which wraps at
    // 65,536, then every token value as a big-endian u64. A value without text has the count 0; one
    // of more tokens than there may be throws std::runtime_error.
    void write(std::u16string_view value, scl::Scl_ostream& out, scl::Scl_status& status);

private:
    std::vector<std::uint64_t> values_;
};

} // namespace tla
