#include "txtdfc/txtdfc_format_codec.hpp"

#include "cerc/cerc_utf16_reader.hpp"
#include "txt/txt_tokeniser.hpp"
#include "txtdfc/txtdfc_view_builder.hpp"

#include <exception>
#include <new>
#include <stdexcept>

namespace txtdfc {

namespace {

constexpr char32_t BYTE_ORDER_MARK = 0xFEFF;

bool is_granted(const dfc::Dfc_facet_set* requested, const dfc::Dfc_facet_id& id) {
    return requested == nullptr || requested->contains(id);
}

} // namespace

Txtdfc_format_codec::Txtdfc_format_codec(const dfc::Dfc_facet_set* requested,
                                         txt::Txt_text_table* table, Txtdfc_token_pool* pool,
                                         bool view_of_empty)
    : table_(table),
      pool_(pool),
      text_facet_granted_(is_granted(requested, dff::DFF_TEXT_FACET_ID)),
      view_of_empty_(view_of_empty) {}

Txtdfc_format_codec::~Txtdfc_format_codec() = default;

dfc::Dfc_format_facet* Txtdfc_format_codec::query_facet(const dfc::Dfc_facet_id& id) {
    if (text_facet_granted_ && id == dff::DFF_TEXT_FACET_ID) {
        return static_cast<dff::Dff_text_facet*>(this);
    }
    return nullptr;
}

void Txtdfc_format_codec::attach(const scl::Scl_buffer* content, scl::Scl_status& status) {
    try {
        if (!status.entries().empty()) status.clear();
        take_content(content, status);
    } catch (const std::bad_alloc&) {
        status = scl::SCL_STATUS_NO_MEMORY;
    } catch (const std::exception& exception) {
        status.assign(scl::SCL_STATUS_EXCEPTION,
                      scl::Scl_wstring_status_arg(std::string_view(exception.what())));
    } catch (...) {
        status = scl::SCL_STATUS_UNKNOWN_EXCEPTION;
    }
}

void Txtdfc_format_codec::take_content(const scl::Scl_buffer* content, scl::Scl_status& status) {
    view_.reset();
    content_ = content;
    content_start_ = 0;
    content_end_ = 0;
    if (text_facet_granted_ && content != nullptr) analyse(status);
}

void Txtdfc_format_codec::analyse(scl::Scl_status& status) {
    if (!reading_.ok()) reading_.clear();
    reader_.attach(*content_, reading_, false);
    const bool has_mark = reader_.read() == BYTE_ORDER_MARK;
    if (!reading_.ok()) return status.push_top(reading_);
    if (has_mark) content_start_ = reader_.tell();
    content_end_ = reader_.size();
}

Txtdfc_text_view* Txtdfc_format_codec::text_view(int index, unsigned& cursor) {
    const bool is_first = index == 0 && cursor == 0;
    cursor = dff::DFF_CURSOR_END;
    if (!is_first) return nullptr;
    if (content_start_ == content_end_ && !view_of_empty_) return nullptr;
    if (!view_) create_text_view();
    return &*view_;
}

void Txtdfc_format_codec::create_text_view() {
    if (content_ == nullptr) {
        throw std::logic_error("Txtdfc_format_codec::create_text_view() - no content attached");
    }
    if (!reading_.ok()) { // what failed before may work now
        reading_.clear();
        reader_.attach(*content_, reading_, false);
    }
    fill_view();
    if (!reading_.ok()) {
        view_.reset();
        throw std::runtime_error("Txtdfc_format_codec::create_text_view() - tokenisation failed");
    }
}

// Leaves no view behind when it throws.
void Txtdfc_format_codec::fill_view() {
    try {
        Txtdfc_text_view& view = view_.emplace(*this, table_);
        txt::Txt_tokeniser tokeniser;
        reader_.seek(content_start_, reading_);
        view.start_content();
        Txtdfc_view_builder(reader_, tokeniser, view, pool()).build(reading_);
        view.end_content();
    } catch (...) {
        view_.reset();
        throw;
    }
}

Txtdfc_token_pool& Txtdfc_format_codec::pool() {
    if (pool_ == nullptr) {
        own_pool_ = std::make_unique<Txtdfc_token_pool>();
        pool_ = own_pool_.get();
    }
    return *pool_;
}

} // namespace txtdfc
