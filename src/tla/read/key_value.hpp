#pragma once

#include "records/field_descriptor.hpp"
#include "scl/status/scl_status.hpp"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tla {

// Replaces `values` by the token values of a looked-up value, formatted as a field of that type is;
// unlike a record's, it is not trimmed. Pushes TLA_STATUS_NO_TOKENS when nothing is left of it, and
// for a type that nobody knows. A value of more than 15,000,000 tokens throws std::runtime_error.
void tokenise_key_value(std::u16string_view value, const Formatter_type_id& type,
                        std::vector<std::uint64_t>& values, scl::Scl_status& status);

// The key hash of a field with these token values, as key tables of version 2 hold it: the CRC-64
// of their bytes in the records' order.
[[nodiscard]] std::uint64_t key_hash(std::span<const std::uint64_t> values);

} // namespace tla
