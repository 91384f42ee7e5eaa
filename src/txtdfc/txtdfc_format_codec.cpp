#include "txtdfc/txtdfc_format_codec.hpp"

#include "cerc/cerc_utf16_reader.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/text/scl_string.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/txt_tokeniser.hpp"
#include "txtdfc/line_ends.hpp"
#include "txtdfc/token_reader.hpp"
#include "txtdfc/txtdfc_text_view.hpp"
#include "txtdfc/txtdfc_token_pool.hpp"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace txtdfc {

namespace {

// Puts the tokens that a Token_reader reads into a view, in memory of a pool. The reader must read
// into the view's text store, so that a token's text is kept where it was built.
class View_filler {
public:
    View_filler(Txtdfc_text_view& view, Txtdfc_token_pool& pool) : view_(view), pool_(pool) {}

    // Throws std::runtime_error when the pool is exhausted.
    void add_token(std::u16string_view text, std::uint32_t type, std::uint64_t offset,
                   std::uint64_t length) {
        const std::u16string_view kept = view_.keep(text); // before a slot is taken: it may throw
        void* const slot = take_slot();
        view_.add_content(*::new (slot) Txtdfc_physical_token(type, kept, view_, offset, length));
    }

    // Sets the trailer of the last token. A trailer at the front of the text has no token before
    // it, so an empty one is made.
    void add_trailer(std::u16string_view text, std::uint64_t offset) {
        if (view_.cback() == nullptr) {
            add_token(scl::W_EMPTY, txt::TXT_TOKEN_UNCLASSIFIED, offset, 0);
        }
        view_.cback()->trailer_text(text);
    }

private:
    // The message names the limit that was reached: the pool's, or the machine's memory.
    [[nodiscard]] void* take_slot() {
        try {
            return pool_.take();
        } catch (const std::bad_alloc&) {
            throw_too_many_tokens(pool_.limit());
        }
    }

    Txtdfc_text_view& view_;
    Txtdfc_token_pool& pool_;
};

// Null asks for every facet, so that callers who edit need not list them.
bool is_granted(const dfc::Dfc_facet_set* requested, const dfc::Dfc_facet_id& id) {
    return requested == nullptr || requested->contains(id);
}

// There may be no memory for the message either; SCL_STATUS_NO_MEMORY is then reported instead.
void report(const std::exception& exception, scl::Scl_status& status) {
    try {
        status.assign(scl::SCL_STATUS_EXCEPTION,
                      scl::Scl_wstring_status_arg(std::string_view(exception.what())));
    } catch (const std::exception&) {
        status = scl::SCL_STATUS_NO_MEMORY;
    }
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

// Members are destroyed in reverse order: the view first, since its tokens lie in the pool.
Txtdfc_format_codec::~Txtdfc_format_codec() = default;

dfc::Dfc_format_facet* Txtdfc_format_codec::query_facet(const dfc::Dfc_facet_id& id) {
    // The facets are private bases, so no cast leads to one that was not granted.
    if (text_facet_granted_ && id == dff::DFF_TEXT_FACET_ID) {
        return static_cast<dff::Dff_text_facet*>(this);
    }
    if (annotation_facet_granted_ && id == dff::DFF_ANNOTATION_FACET_ID) {
        return static_cast<dff::Dff_annotation_facet*>(this);
    }
    return nullptr;
}

// Setting a single code allocates nothing, so no handler can throw.
void Txtdfc_format_codec::attach(const scl::Scl_buffer* content, scl::Scl_status& status) {
    try {
        status.clear(); // of what an earlier attachment left
        take_content(content, status);
    } catch (const std::bad_alloc&) {
        status = scl::SCL_STATUS_NO_MEMORY;
    } catch (const std::exception& exception) {
        report(exception, status);
    } catch (...) {
        status = scl::SCL_STATUS_UNKNOWN_EXCEPTION;
    }
}

// Forgets everything about the old content first: reading the new one may throw.
void Txtdfc_format_codec::take_content(const scl::Scl_buffer* content, scl::Scl_status& status) {
    if (in_transaction_) rollback_transaction();
    patcher_.reset();
    // The view before the extent that it was made from, the patcher first of all: its edits are
    // offsets in the old content.
    view_.reset();
    extent_.reset();
    content_ = content;
    if (!text_facet_granted_ && !annotation_facet_granted_) {
        extent_ = Extent(); // no facet was granted that needs it
    } else if (content != nullptr) {
        analyse(status);
    }
}

// Takes the size even if the first character cannot be read. Without it, text added at the back of
// such a content would come out at its front.
void Txtdfc_format_codec::analyse(scl::Scl_status& status) {
    ends_with_line_end_ = false;
    cerc::Cerc_utf16_reader reader;
    reader.attach(*content_, status, false);
    if (status.has_failed()) return;
    // The mark is not part of the text, and text added at the front comes behind it.
    const bool has_mark = reader.read() == cerc::Cerc_reader_base::BYTE_ORDER_MARK;
    const std::uint64_t begin = has_mark ? reader.tell() : 0;
    extent_ = Extent{begin, content_->size(false, status)};
    if (annotation_facet_granted_ && !status.has_failed()) analyse_line_ends(status);
}

// Only if lines may be added: other users are spared the read at the content's end. An empty
// content counts as ending with a line end, since a line added to it needs none before it.
void Txtdfc_format_codec::analyse_line_ends(scl::Scl_status& status) {
    Content_analyser analyser;
    analyser.scan(*content_, status);
    line_ending_ = analyser.line_ending();
    ends_with_line_end_ = analyser.ends_with_line_end() || extent_->empty();
}

Txtdfc_text_view* Txtdfc_format_codec::text_view(int index, unsigned& cursor) {
    // One content has one text, so there is one view, at index 0.
    const bool is_first = index == 0 && cursor == 0;
    cursor = dfc::DFC_CURSOR_END; // whatever comes of it, there is no view after this one
    if (!is_first) return nullptr;
    const bool has_text = extent_ && !extent_->empty();
    if (!has_text && !view_of_empty_) return nullptr;
    if (!view_) create_text_view();
    return &*view_;
}

// Leaves no view if it throws, so that the next call tries again.
void Txtdfc_format_codec::create_text_view() {
    if (content_ == nullptr) {
        throw std::logic_error("Txtdfc_format_codec::create_text_view() - no content attached");
    }
    try {
        fill_view(view_.emplace(*this, table_));
    } catch (...) {
        view_.reset();
        throw;
    }
}

// With a new reader: since attach() the content may have been written to and have moved in memory.
void Txtdfc_format_codec::fill_view(Txtdfc_text_view& view) {
    scl::Scl_status status;
    if (extent_) {
        cerc::Cerc_utf16_reader reader;
        reader.attach(*content_, status, false);
        reader.seek(extent_->begin, status); // past a mark, which would be a token of its own
        txt::Txt_tokeniser tokeniser;
        view.start_content();
        View_filler filler(view, pool());
        Token_reader(reader, tokeniser, view.text_store(), filler).read_all(status);
        view.end_content();
    }
    if (!extent_ || !status.ok()) {
        throw std::runtime_error("Txtdfc_format_codec::create_text_view() - tokenisation failed");
    }
}

// Made for the first view: a pool is large, and callers that only add lines need none.
Txtdfc_token_pool& Txtdfc_format_codec::pool() {
    if (pool_ == nullptr) {
        own_pool_ = std::make_unique<Txtdfc_token_pool>();
        pool_ = own_pool_.get();
    }
    return *pool_;
}

// Sets the flag even if the patcher refuses: it does so when a transaction is open already.
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

// Refused in a transaction, whose changes may still be rolled back.
// The content itself stays as it is: edits are applied to a copy.
std::unique_ptr<scl::Scl_buffer> Txtdfc_format_codec::compose(scl::Scl_status& status) {
    if (content_ == nullptr) {
        throw std::logic_error("Txtdfc_format_codec::compose() - no content attached");
    }
    if (in_transaction_) {
        throw std::logic_error("Txtdfc_format_codec::compose() - transaction in progress");
    }
    status.clear(); // so that null with a good status says that nothing was changed
    if (!modified()) return nullptr;
    auto composed = std::make_unique<scl::Scl_heap_buffer>();
    patcher_.apply(*content_, *composed, status);
    if (status.has_failed()) return nullptr;
    return composed;
}

// Builds the message only for a fault: inserts are many.
bool Txtdfc_format_codec::may_insert(const char* operation, std::size_t length) const {
    const auto fault = [operation](const char* what) {
        return std::string("Txtdfc_format_codec::") + operation + "() - " + what;
    };
    if (length % sizeof(char16_t) != 0) {
        throw std::invalid_argument(fault("length not multiple of Char16"));
    }
    if (content_ == nullptr) throw std::logic_error(fault("no content attached"));
    return modifiable() && length != 0 && extent_;
}

// Behind a byte order mark, which must stay at the front.
bool Txtdfc_format_codec::insert_content_front(const char16_t* data, std::size_t length) {
    if (!may_insert("insert_content_front", length)) return false;
    std::u16string lines;
    append_lines({data, length / sizeof(char16_t)}, line_end_of(line_ending_), lines);
    return patcher_.add_insert(extent_->begin, lines);
}

// Ends an unfinished last line first; otherwise the text would continue it.
bool Txtdfc_format_codec::insert_content_back(const char16_t* data, std::size_t length) {
    if (!may_insert("insert_content_back", length)) return false;
    const std::u16string_view line_end = line_end_of(line_ending_);
    std::u16string lines;
    if (!ends_with_line_end_) lines += line_end;
    append_lines({data, length / sizeof(char16_t)}, line_end, lines);
    return patcher_.add_insert(extent_->end, lines);
}

bool Txtdfc_format_codec::insert_content_front(std::u16string_view text) {
    return insert_content_front(text.data(), text.size() * sizeof(char16_t));
}

bool Txtdfc_format_codec::insert_content_back(std::u16string_view text) {
    return insert_content_back(text.data(), text.size() * sizeof(char16_t));
}

} // namespace txtdfc
