#include "txtdfc/txtdfc_format_codec.hpp"

#include "cerc/cerc_utf16_reader.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/text/scl_string.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/txt_tokeniser.hpp"
#include "txtdfc/line_ends.hpp"
#include "txtdfc/token_reader.hpp"
#include "txtdfc/view_filler.hpp"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace txtdfc {

void View_filler::add_token(std::u16string_view text, std::uint32_t type, std::uint64_t offset,
                            std::uint64_t length) {
    void* const slot = take_slot();
    const std::u16string_view kept = view_.keep(text);
    view_.add_content(*::new (slot) Txtdfc_physical_token(type, kept, view_, offset, length));
}

void View_filler::add_trailer(std::u16string_view text, std::uint64_t offset) {
    if (view_.cback() == nullptr) add_token(scl::W_EMPTY, txt::TXT_TOKEN_UNCLASSIFIED, offset, 0);
    view_.cback()->trailer_text(text);
}

void* View_filler::take_slot() {
    try {
        return pool_.take();
    } catch (const std::bad_alloc&) {
        throw_too_many_tokens(pool_.limit());
    }
}

namespace {

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
      annotation_facet_granted_(is_granted(requested, dff::DFF_ANNOTATION_FACET_ID)),
      view_of_empty_(view_of_empty) {}

Txtdfc_format_codec::~Txtdfc_format_codec() = default;

dfc::Dfc_format_facet* Txtdfc_format_codec::query_facet(const dfc::Dfc_facet_id& id) {
    if (text_facet_granted_ && id == dff::DFF_TEXT_FACET_ID) {
        return static_cast<dff::Dff_text_facet*>(this);
    }
    if (annotation_facet_granted_ && id == dff::DFF_ANNOTATION_FACET_ID) {
        return static_cast<dff::Dff_annotation_facet*>(this);
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
    if (in_transaction_) rollback_transaction();
    patcher_.reset();
    view_.reset();
    content_ = content;
    content_start_ = 0;
    content_end_ = 0;
    if (content != nullptr && (text_facet_granted_ || annotation_facet_granted_)) analyse(status);
}

void Txtdfc_format_codec::analyse(scl::Scl_status& status) {
    ends_with_line_end_ = false;
    if (!reading_.ok()) reading_.clear();
    reader_.attach(*content_, reading_, false);
    const bool has_mark = reader_.read() == cerc::Cerc_reader_base::BYTE_ORDER_MARK;
    if (!reading_.ok()) return status.push_top(reading_);
    if (has_mark) content_start_ = reader_.tell();
    content_end_ = reader_.size();
    if (annotation_facet_granted_) analyse_line_ends(status);
}

void Txtdfc_format_codec::analyse_line_ends(scl::Scl_status& status) {
    Content_analyser analyser;
    analyser.scan(*content_, status);
    line_ending_ = analyser.line_ending();
    ends_with_line_end_ = analyser.ends_with_line_end() || content_start_ == content_end_;
}

Txtdfc_text_view* Txtdfc_format_codec::text_view(int index, unsigned& cursor) {
    const bool is_first = index == 0 && cursor == 0;
    cursor = dfc::DFC_CURSOR_END;
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
        View_filler filler(view, pool());
        Token_reader(reader_, tokeniser, view.text_store(), filler).read_all(reading_);
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

bool Txtdfc_format_codec::begin_transaction() {
    const bool begun = patcher_.begin();
    in_transaction_ = true;
    return begun;
}

bool Txtdfc_format_codec::commit_transaction() {
    const bool committed = patcher_.commit();
    in_transaction_ = false;
    return committed;
}

bool Txtdfc_format_codec::rollback_transaction() {
    const bool rolled_back = patcher_.rollback();
    in_transaction_ = false;
    return rolled_back;
}

std::unique_ptr<scl::Scl_buffer> Txtdfc_format_codec::compose(scl::Scl_status& status) {
    if (content_ == nullptr) {
        throw std::logic_error("Txtdfc_format_codec::compose() - no content attached");
    }
    if (in_transaction_) {
        throw std::logic_error("Txtdfc_format_codec::compose() - transaction in progress");
    }
    status.clear();
    if (!modified()) return nullptr;
    auto composed = std::make_unique<scl::Scl_heap_buffer>();
    patcher_.apply(*content_, *composed, status);
    if (status.has_failed()) return nullptr;
    return composed;
}

bool Txtdfc_format_codec::may_insert(const char* operation, std::size_t length) const {
    const std::string name = std::string("Txtdfc_format_codec::") + operation + "()";
    if (length % sizeof(char16_t) != 0) {
        throw std::invalid_argument(name + " - length not multiple of Char16");
    }
    if (content_ == nullptr) throw std::logic_error(name + " - no content attached");
    return modifiable() && length != 0;
}

bool Txtdfc_format_codec::insert_content_front(const char16_t* data, std::size_t length) {
    if (!may_insert("insert_content_front", length)) return false;
    std::u16string lines;
    append_lines({data, length / sizeof(char16_t)}, line_end_of(line_ending_), lines);
    return patcher_.add_insert(content_start_, lines);
}

bool Txtdfc_format_codec::insert_content_back(const char16_t* data, std::size_t length) {
    if (!may_insert("insert_content_back", length)) return false;
    const std::u16string_view line_end = line_end_of(line_ending_);
    std::u16string lines;
    if (!ends_with_line_end_) lines += line_end;
    append_lines({data, length / sizeof(char16_t)}, line_end, lines);
    return patcher_.add_insert(content_end_, lines);
}

bool Txtdfc_format_codec::insert_content_front(std::u16string_view text) {
    return insert_content_front(text.data(), text.size() * sizeof(char16_t));
}

bool Txtdfc_format_codec::insert_content_back(std::u16string_view text) {
    return insert_content_back(text.data(), text.size() * sizeof(char16_t));
}

} // namespace txtdfc
