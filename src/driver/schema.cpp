#include "driver/schema.hpp"

#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_case.hpp"
#include "scl/text/scl_string.hpp"

#include <algorithm>

namespace driver {

namespace {

// Pieces come without the blanks around them, and empty ones not at all: a blank behind a semicolon
// and a semicolon at the end do no harm.
std::vector<std::u16string> split(std::u16string_view text, std::u16string_view separators) {
    scl::Scl_tokeniser tokeniser;
    tokeniser.separators(separators);
    std::vector<std::u16string> pieces;
    tokeniser.tokenise(text, pieces);
    return pieces;
}

// Any even number of pieces is accepted; pieces after the second are ignored.
bool parse_field(std::u16string_view text, Schema& schema) {
    const std::vector<std::u16string> pieces = split(text, scl::W_COMMA);
    if (pieces.empty() || pieces.size() % 2 != 0) return false;
    std::string type_name;
    scl::scl_wtos(pieces[1], type_name, true);
    schema.types.push_back(tla::tla_formatter_type_id_from_name(type_name));
    schema.fields.push_back({pieces[0], schema.types.back()});
    return true;
}

// Sizes first: names of different lengths are never the same.
bool same_name(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() && scl::scl_utf16_compare_nc(a, b) == 0;
}

} // namespace

bool parse_schema(std::string_view text, Schema& schema) {
    std::u16string wide;
    scl::scl_string_append(wide, text);
    const std::vector<std::u16string> pieces = split(wide, scl::W_SEMICOLON);
    return std::all_of(pieces.begin(), pieces.end(), [&schema](const std::u16string& piece) {
        return parse_field(piece, schema);
    });
}

void resolve_keys(std::span<const tla::Field_descriptor> fields,
                  std::span<const std::u16string> key_names,
                  std::vector<std::uint64_t>& positions) {
    for (const std::u16string& key_name : key_names) {
        // A name that no field has is passed over here. The generator tells of it, when all else is
        // done.
        const auto found = std::ranges::find_if(
            fields, [&key_name](const auto& field) { return same_name(field.name, key_name); });
        if (found != fields.end()) {
            positions.push_back(static_cast<std::uint64_t>(found - fields.begin()));
        }
    }
}

} // namespace driver
