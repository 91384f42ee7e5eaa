#include "txtdfc/txtdfc_token_values.hpp"

namespace txtdfc {

bool txtdfc_token_values(std::u16string_view text, std::vector<std::uint64_t>& values) {
    values.clear();
    const scl::Scl_text_span<char16_t> span = scl::scl_span_of(text);
    txtdfc_each_token_value(span, [&values](std::uint64_t value) { values.push_back(value); });
    return !txtdfc_without_mark(span).empty();
}

} // namespace txtdfc
