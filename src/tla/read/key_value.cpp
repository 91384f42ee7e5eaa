#include "tla/read/key_value.hpp"

#include "records/tla_formatters.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_endian.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <string>

namespace tla {

// By the steps that a record's field goes through, so that equal texts come to equal values.
void tokenise_key_value(std::u16string_view value, const Formatter_type_id& type,
                        std::vector<std::uint64_t>& values, scl::Scl_status& status) {
    const auto formatter = tla_create_formatter(type);
    std::u16string formatted;
    if (formatter != nullptr) formatter->format(value, formatted, false);
    if (!txtdfc::txtdfc_token_values(formatted, values)) status.push(TLA_STATUS_NO_TOKENS);
}

// Value by value: no copy of the record's bytes is needed to take their checksum.
std::uint64_t key_hash(std::span<const std::uint64_t> values) {
    scl::Scl_crc64 crc;
    for (const std::uint64_t value : values) {
        const auto raw = std::bit_cast<scl::Scl_raw<std::uint64_t>>(scl::scl_byte_swapped(value));
        crc.update(raw);
    }
    return crc.result(true);
}

} // namespace tla
