#include "txtdfc/txtdfc_token_values.hpp"

#include "cerc/cerc_utf16_reader.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/txt_tokeniser.hpp"
#include "txtdfc/token_reader.hpp"
#include "txtdfc/txtdfc_token_pool.hpp"

namespace txtdfc {

namespace {

class Value_list {
public:
    explicit Value_list(std::vector<std::uint64_t>& values) : values_(values) {}

    void add_token(std::u16string_view text, std::uint32_t /*type*/, std::uint64_t /*offset*/,
                   std::uint64_t /*length*/) {
        if (values_.size() == TXTDFC_MAX_TOKENS) throw_too_many_tokens(TXTDFC_MAX_TOKENS);
        values_.push_back(txt::txt_token_value(text));
    }
    // A trailer that the text begins with belongs to a token without text.
    void add_trailer(std::u16string_view /*text*/, std::uint64_t /*offset*/) {
        if (values_.empty()) values_.push_back(txt::txt_token_value({}));
    }

private:
    std::vector<std::uint64_t>& values_;
};

void read_values(std::u16string_view text, std::vector<std::uint64_t>& values) {
    scl::Scl_status status; // never set: what lies in memory can be read
    cerc::Cerc_utf16_reader reader;
    reader.attach(std::as_bytes(std::span(text)));
    txt::Txt_tokeniser tokeniser;
    txt::Txt_text_store store;
    Value_list list(values);
    Token_reader(reader, tokeniser, store, list).read_all(status);
}

} // namespace

bool txtdfc_token_values(std::u16string_view text, std::vector<std::uint64_t>& values) {
    values.clear();
    if (text.starts_with(cerc::Cerc_reader_base::BYTE_ORDER_MARK)) text.remove_prefix(1);
    if (text.empty()) return false;
    if (txt::Txt_tokeniser::is_one_run(text)) {
        values.push_back(txt::txt_token_value(text));
    } else {
        read_values(text, values);
    }
    return true;
}

} // namespace txtdfc
