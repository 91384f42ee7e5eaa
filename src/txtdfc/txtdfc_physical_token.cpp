#include "txtdfc/txtdfc_physical_token.hpp"

#include "txtdfc/txtdfc_format_codec.hpp"
#include "txtdfc/txtdfc_redaction.hpp"

#include <string>

namespace txtdfc {

namespace {

constexpr std::uint64_t UNIT_BYTES = sizeof(char16_t);

} // namespace

// Only views of this kind have tokens of this kind.
Txtdfc_format_codec& Txtdfc_physical_token::codec() const {
    return static_cast<const Txtdfc_text_view&>(view()).codec();
}

// By the text, which may be longer than content_length() can tell.
std::uint64_t Txtdfc_physical_token::text_bytes() const {
    return text_entry().size() * UNIT_BYTES;
}

bool Txtdfc_physical_token::remove() {
    return codec().modifiable() && codec().patcher().add_delete(offset_, text_bytes());
}

bool Txtdfc_physical_token::replace_text(std::u16string_view text, std::u16string_view before,
                                         std::u16string_view after) {
    if (!codec().modifiable() || (text.empty() && before.empty() && after.empty())) return false;
    ucl::Ucl_buffer_patcher& patcher = codec().patcher();
    const std::uint64_t length = text_bytes();
    return (before.empty() || patcher.add_insert(offset_, before)) &&
           (text.empty() || patcher.add_edit(offset_, length, text)) &&
           (after.empty() || patcher.add_insert(offset_ + length, after));
}

bool Txtdfc_physical_token::redact(std::size_t skip, std::size_t count) {
    if (!codec().modifiable()) return false;
    const std::size_t wanted = count != 0 ? count : length(txt::Txt_text_form::visible);
    const Txtdfc_redaction found = txtdfc_find_redaction(text_entry(), skip, wanted);
    if (found.empty()) return true;
    const auto character = static_cast<char16_t>(view().get_redaction_character());
    return codec().patcher().add_edit(offset_ + found.begin * UNIT_BYTES,
                                      (found.end - found.begin) * UNIT_BYTES,
                                      std::u16string(found.count, character));
}

} // namespace txtdfc
