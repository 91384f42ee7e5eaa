#include "records/values/tla_value_tokens.hpp"

#include "records/values/tla_status_codes.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

namespace tla {

namespace {

// Longer values get memory of their own, so that one of them does not stay for every later lookup.
constexpr std::size_t KEPT_UNITS = 512;

// False when there is no text: nothing, or a byte order mark alone.
template <typename Unit>
bool add_values(scl::Scl_text_span<Unit> formatted, std::vector<std::uint64_t>& values) {
    txtdfc::txtdfc_each_token_value(formatted, [&values](auto value) { values.push_back(value); });
    return !txtdfc::txtdfc_without_mark(formatted).empty();
}

} // namespace

void Tla_value_tokeniser::tokenise(std::u16string_view value, const Formatter_type_id& type,
                                   std::vector<std::uint64_t>& values, scl::Scl_status& status) {
    values.clear();
    const Tla_value_formatter formatter(type);
    bool has_text = false;
    if (formatter.is_known()) {
        if (value.size() > KEPT_UNITS) {
            Tla_value_buffer own;
            has_text = add_values(formatter.format(value, own), values);
            // The bytes' path is the faster one, and gives the same. Tested by
            // Lookup.FindsWhatTheRuleSaysInAnyTable.
        } else if (narrow(value)) {
            has_text = add_values(formatter.format(narrow_.text(value.size()), buffer_), values);
        } else {
            has_text = add_values(formatter.format(value, buffer_), values);
        }
    }
    if (!has_text) status.push(TLA_STATUS_NO_TOKENS);
}

// Makes bytes of the units; false when one is not ASCII.
bool Tla_value_tokeniser::narrow(std::u16string_view value) {
    constexpr unsigned LAST_ASCII = 0x7F;
    char* const bytes = narrow_.room(value.size());
    unsigned bits = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
        bits |= value[i];
        bytes[i] = static_cast<char>(value[i]);
    }
    return bits <= LAST_ASCII;
}

} // namespace tla
