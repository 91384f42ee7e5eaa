#pragma once

#include "cerc/cerc_utf16_reader.hpp"
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

namespace txtdfc {

// The codec of plain UTF-16 text (little-endian; a byte order mark at the front is not part of the
// text). One codec serves any number of values, attached one after the other.
//
// Misuse throws: std::logic_error what needs content without any, and composing in a transaction;
// std::invalid_argument an odd length in bytes.
class Txtdfc_format_codec final : public dfc::Dfc_format_codec,
                                  private dff::Dff_text_facet,
                                  private dff::Dff_annotation_facet {
public:
    // `requested` names the facets to grant; null grants all. `table`, which may be null, keeps the
    // texts of the tokens. `pool` gives the tokens' memory: without one the codec makes its own.
    // Neither is owned, and both must outlive the codec. With `view_of_empty` content without text
    // has a view, without tokens; else it has none.
    Txtdfc_format_codec(const dfc::Dfc_facet_set* requested, txt::Txt_text_table* table,
                        Txtdfc_token_pool* pool, bool view_of_empty);
    ~Txtdfc_format_codec() override;

    [[nodiscard]] dfc::Dfc_format_facet* query_facet(const dfc::Dfc_facet_id& id) override;

    // Drops the view of what was attached before; null detaches. The status is cleared, then says
    // how the content could be read: what its buffer reports, SCL_STATUS_NO_MEMORY, or
    // SCL_STATUS_EXCEPTION with the exception's message, or SCL_STATUS_UNKNOWN_EXCEPTION.
    //
    // A pool counts the tokens of all values that were attached.
    void attach(const scl::Scl_buffer* content, scl::Scl_status& status) override;

    // The one view, at index 0 and cursor 0; null for any other, and when the content has no text.
    // Made when first asked for. Throws std::logic_error when nothing is attached (and a view of
    // empty content was asked for), std::runtime_error when the content cannot be read or has more
    // tokens than the pool can hold.
    [[nodiscard]] Txtdfc_text_view* text_view(int index, unsigned& cursor) override;

    bool begin_transaction() override;
    bool commit_transaction() override;
    bool rollback_transaction() override;
    [[nodiscard]] bool in_transaction() const override { return in_transaction_; }
    [[nodiscard]] bool modified() const override { return patcher_.committed(); }
    [[nodiscard]] bool reserved_query() const override { return false; }
    [[nodiscard]] std::u16string_view label() const override { return scl::W_EMPTY; }
    [[nodiscard]] std::unique_ptr<scl::Scl_buffer> compose(scl::Scl_status& status) override;

    // The text becomes lines of its own, with the line ends of the content: before its text, or at
    // its end. False, and nothing queued, when the content may not be modified or there is no text.
    bool insert_content_front(std::u16string_view text) override;
    bool insert_content_back(std::u16string_view text) override;
    bool insert_content_front(const char16_t* data, std::size_t length) override;
    bool insert_content_back(const char16_t* data, std::size_t length) override;

    // Where the tokens queue their edits.
    [[nodiscard]] ucl::Ucl_buffer_patcher& patcher() { return patcher_; }

private:
    void take_content(const scl::Scl_buffer* content, scl::Scl_status& status);
    void analyse(scl::Scl_status& status);
    void analyse_line_ends(scl::Scl_status& status);
    [[nodiscard]] bool may_insert(const char* operation, std::size_t length) const;
    void create_text_view();
    void fill_view();
    [[nodiscard]] Txtdfc_token_pool& pool();

    txt::Txt_text_table* table_;
    Txtdfc_token_pool* pool_;
    std::unique_ptr<Txtdfc_token_pool> own_pool_; // outlives the view
    const scl::Scl_buffer* content_ = nullptr;
    Line_ending line_ending_ = Line_ending::crlf;
    bool ends_with_line_end_ = false; // or holds no text; known if there is an annotation facet
    bool text_facet_granted_;
    bool annotation_facet_granted_;
    bool in_transaction_ = false;
    bool view_of_empty_;
    cerc::Cerc_utf16_reader reader_; // of the content
    scl::Scl_status reading_;        // what the reader reports
    ucl::Ucl_buffer_patcher patcher_;
    std::uint64_t content_start_ = 0; // bytes, as the end
    std::uint64_t content_end_ = 0;
    std::optional<Txtdfc_text_view> view_;
};

} // namespace txtdfc
