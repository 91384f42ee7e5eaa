#include "tla/read/key_value.hpp"

#include "records/tla_formatters.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_endian.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <string>

namespace tla {

namespace {

// Longer values go the way of other scripts, so that no more memory than this is kept.
constexpr std::size_t SHORT_UNITS = 512;

} // namespace

// By the steps that a record's field goes through, so that equal texts come to equal values.
void Key_tokeniser::tokenise(std::u16string_view value, const Formatter_type_id& type,
                             std::vector<std::uint64_t>& values, scl::Scl_status& status) {
    if (value.size() <= SHORT_UNITS && tokenise_short_ascii(value, type, values)) return;
    const auto formatter = tla_create_formatter(type);
    std::u16string formatted;
    if (formatter != nullptr) formatter->format(value, formatted, false);
    if (!txtdfc::txtdfc_token_values(formatted, values)) status.push(TLA_STATUS_NO_TOKENS);
}

// As the records of ASCII input are made, byte by byte and without memory being taken. False, and
// nothing said, for all else: other characters, an unknown type, a value of which nothing is left.
bool Key_tokeniser::tokenise_short_ascii(std::u16string_view value, const Formatter_type_id& type,
                                         std::vector<std::uint64_t>& values) {
    constexpr unsigned LAST_ASCII = 0x7F;
    char* const narrow = narrow_.room(value.size());
    unsigned bits = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
        bits |= value[i];
        narrow[i] = static_cast<char>(value[i]);
    }
    const Tla_ascii_formatter format = tla_ascii_formatter(type);
    if (bits > LAST_ASCII || format == nullptr) return false;
    const auto text = format(narrow_.text(value.size()), formatted_);
    values.clear();
    txtdfc::txtdfc_each_token_value(text, [&values](auto token) { values.push_back(token); });
    return !text.empty();
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
