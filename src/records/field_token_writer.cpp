#include "records/field_token_writer.hpp"

#include "scl/scl_wstring_buffer.hpp"

namespace tla {

namespace {

const dfc::Dfc_facet_set TEXT_FACET_ONLY = {dff::DFF_TEXT_FACET_ID};

dff::Dff_text_facet& text_facet_of(dfc::Dfc_format_codec& codec) {
    return dynamic_cast<dff::Dff_text_facet&>(*codec.query_facet(dff::DFF_TEXT_FACET_ID));
}

} // namespace

Field_token_writer::Field_token_writer()
    : codec_(&TEXT_FACET_ONLY, nullptr, &pool_, false), text_facet_(text_facet_of(codec_)) {}

bool Field_token_writer::collect(std::u16string_view value, std::vector<std::uint64_t>& values,
                                 scl::Scl_status& status) {
    values.clear();
    const scl::Scl_wstring_buffer content(value);
    codec_.attach(&content, status);
    if (status.has_failed()) return false;
    pool_.rewind(); // attaching destroyed the last value's tokens
    unsigned cursor = 0;
    const txt::Txt_text_view* const view = text_facet_.text_view(0, cursor);
    if (view == nullptr) return false;
    for (const txt::Txt_physical_token* token = view->cfront(); token != nullptr;
         token = token->next()) {
        values.push_back(token->crc(txt::Txt_text_form::whole));
    }
    return true;
}

void Field_token_writer::write(std::u16string_view value, scl::Scl_ostream& out,
                               scl::Scl_status& status) {
    (void)collect(value, values_, status); // a value without text has the count 0
    if (status.has_failed()) return;
    out.write_be(static_cast<std::uint16_t>(values_.size()), status);
    for (const std::uint64_t token_value : values_) {
        out.write_be(token_value, status);
    }
}

} // namespace tla
