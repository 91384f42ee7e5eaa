#pragma once

#include "txtdfc/dfc_facets.hpp"
#include "txtdfc/dfc_format_codec.hpp"
#include "txtdfc/line_ends.hpp"
#include "txtdfc/txtdfc_text_view.hpp"
#include "txtdfc/txtdfc_token_pool.hpp"
#include "ucl/ucl_buffer_patcher.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace txtdfc {

// The codec of plain UTF-16 text (little-endian; a byte order mark at the front is not part of the
// text). One codec serves any number of values, attached one after the other. The content may be
// written to between two calls of the codec; queued edits keep their offsets.
//
// Throws std::logic_error when there is no content and a function needs it, and for compose() in a
// transaction; std::invalid_argument for a length in bytes that is odd. attach() never throws.
class Txtdfc_format_codec final : public dfc::Dfc_format_codec,
                                  private dff::Dff_text_facet,
                                  private dff::Dff_annotation_facet {
public:
    // `requested` names the facets to grant; null grants all. `table`, which may be null, keeps the
    // tokens' texts. `pool` gives the tokens' memory; when it is null, the codec makes its own.
    // Neither is owned, and both must outlive the codec. With `view_of_empty`, content without text
    // has a view without tokens; else it has no view.
    Txtdfc_format_codec(const dfc::Dfc_facet_set* requested, txt::Txt_text_table* table,
                        Txtdfc_token_pool* pool, bool view_of_empty);
    ~Txtdfc_format_codec() override;

    [[nodiscard]] dfc::Dfc_format_facet* query_facet(const dfc::Dfc_facet_id& id) override;

    // Replaces the content and drops the view of the old one; null detaches. The status is cleared
    // first. After a failure it has what the content's buffer reports (SCL_STATUS_READ_FAILED for a
    // file), SCL_STATUS_NO_MEMORY, SCL_STATUS_EXCEPTION with the exception's message, or
    // SCL_STATUS_UNKNOWN_EXCEPTION, and the codec has the new content all the same. When not even
    // the content's size could be read, it has no text: there is no view, and inserts are refused.
    //
    // The pool's limit counts for the tokens of all contents together.
    void attach(const scl::Scl_buffer* content, scl::Scl_status& status) override;

    // The content's only view, at index 0 and cursor 0. Null for any other index or cursor, and
    // when the content has no text. The first call makes it, from the content as it is then. Throws
    // std::logic_error when nothing is attached (with `view_of_empty`), std::runtime_error when the
    // content cannot be read or has more tokens than the pool can hold; the next call tries again.
    [[nodiscard]] Txtdfc_text_view* text_view(int index, unsigned& cursor) override;

    bool begin_transaction() override;
    bool commit_transaction() override;
    bool rollback_transaction() override;
    [[nodiscard]] bool in_transaction() const override { return in_transaction_; }
    [[nodiscard]] bool modified() const override { return patcher_.committed(); }
    [[nodiscard]] bool reserved_query() const override { return false; }
    [[nodiscard]] std::u16string_view label() const override { return scl::W_EMPTY; }
    // Codes are those of ucl::Ucl_buffer_patcher::apply: what the content's buffer reports,
    // SCL_STATUS_END_OF_DATA, and SCL_STATUS_OUT_OF_BOUNDS when the content has become shorter and
    // an edit lies beyond its end. Throws std::bad_alloc when memory runs out.
    [[nodiscard]] std::unique_ptr<scl::Scl_buffer> compose(scl::Scl_status& status) override;

    // Inserts the text as lines of its own, with the content's kind of line end, before its first
    // or behind its last character at the time of attach(). False, with nothing queued, when the
    // content may not be modified, the text is empty, the patcher refuses the edit (for example,
    // when the content ends in half a unit), or attach() could not read the content's size.
    bool insert_content_front(std::u16string_view text) override;
    bool insert_content_back(std::u16string_view text) override;
    bool insert_content_front(const char16_t* data, std::size_t length) override;
    bool insert_content_back(const char16_t* data, std::size_t length) override;

    // Where the tokens queue their edits.
    [[nodiscard]] ucl::Ucl_buffer_patcher& patcher() { return patcher_; }

private:
    // Where the text lies, in bytes of the content.
    struct Extent {
        std::uint64_t begin = 0; // after a byte order mark
        std::uint64_t end = 0;

        [[nodiscard]] bool empty() const { return begin == end; }
    };

    void take_content(const scl::Scl_buffer* content, scl::Scl_status& status);
    void analyse(scl::Scl_status& status);
    void analyse_line_ends(scl::Scl_status& status);
    [[nodiscard]] bool may_insert(const char* operation, std::size_t length) const;
    void create_text_view();
    void fill_view(Txtdfc_text_view& view);
    [[nodiscard]] Txtdfc_token_pool& pool();

    txt::Txt_text_table* table_;
    Txtdfc_token_pool* pool_;
    std::unique_ptr<Txtdfc_token_pool> own_pool_; // outlives the view
    const scl::Scl_buffer* content_ = nullptr;
    Line_ending line_ending_ = Line_ending::crlf;
    bool ends_with_line_end_ = false; // or holds no text; found out for the annotation facet only
    bool text_facet_granted_;
    bool annotation_facet_granted_;
    bool in_transaction_ = false;
    bool view_of_empty_;
    ucl::Ucl_buffer_patcher patcher_;
    std::optional<Extent> extent_;         // none until known
    std::optional<Txtdfc_text_view> view_; // last, as it goes before what it needs
};

} // namespace txtdfc

#pragma GCC visibility pop
