#pragma once

#include "records/field_descriptor.hpp"
#include "records/scratch_text.hpp"
#include "scl/status/scl_status.hpp"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tla {

// Makes the token values of looked-up values. Kept from one lookup to the next, for its memory.
class Key_tokeniser {
public:
    // Replaces `values` by the token values of a value, formatted as a field of that type is;
    // unlike a record's, it is not trimmed. Pushes TLA_STATUS_NO_TOKENS when nothing is left of it,
    // and for a type that nobody knows. A value of more than 15,000,000 tokens throws
    // std::runtime_error.
    void tokenise(std::u16string_view value, const Formatter_type_id& type,
                  std::vector<std::uint64_t>& values, scl::Scl_status& status);

private:
    [[nodiscard]] bool tokenise_short_ascii(std::u16string_view value,
                                            const Formatter_type_id& type,
                                            std::vector<std::uint64_t>& values);

    Scratch_text<char> narrow_;
    Scratch_text<char> formatted_;
};

// The key hash of a field with these token values, as key tables of version 2 hold it: the CRC-64
// of their bytes in the records' order.
[[nodiscard]] std::uint64_t key_hash(std::span<const std::uint64_t> values);

} // namespace tla
