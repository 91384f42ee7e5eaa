#pragma once

#include "scl/io/scl_buffer.hpp"
#include "scl/text/scl_string.hpp"
#include "txtdfc/dfc_facets.hpp"

#include <memory>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace dfc {

// Gives access to content of one format, through facets. Edits made through them are queued;
// compose() makes new content with all of them. The attached content itself never changes.
class Dfc_format_codec {
public:
    Dfc_format_codec(const Dfc_format_codec&) = delete;
    Dfc_format_codec& operator=(const Dfc_format_codec&) = delete;
    virtual ~Dfc_format_codec() = default;

    // Null when the codec has no such facet, or was not granted it. The codec owns its facets.
    [[nodiscard]] virtual Dfc_format_facet* query_facet(const Dfc_facet_id& id) = 0;

    // Replaces the content, which is not owned and must outlive its use here. Drops queued edits
    // and rolls an open transaction back. Never throws: an exception becomes SCL_STATUS_NO_MEMORY,
    // SCL_STATUS_EXCEPTION with its message, or SCL_STATUS_UNKNOWN_EXCEPTION. The status is cleared
    // first.
    virtual void attach(const scl::Scl_buffer* content, scl::Scl_status& status) = 0;

    // Whether changes may be queued; false at first.
    virtual void set_modifiable(bool modifiable) { modifiable_ = modifiable; }
    [[nodiscard]] virtual bool modifiable() const { return modifiable_; }

    // A flag for the codec's owner, without meaning to the codec; false at first.
    virtual void set_secondary_flag(bool flag) { secondary_flag_ = flag; }
    [[nodiscard]] virtual bool secondary_flag() const { return secondary_flag_; }

    // Edits queued in a transaction count once it is committed; a roll-back drops them.
    // Transactions do not nest: begin returns false inside one, the other two outside of one.
    virtual bool begin_transaction() = 0;
    virtual bool commit_transaction() = 0;
    virtual bool rollback_transaction() = 0;
    [[nodiscard]] virtual bool in_transaction() const = 0;

    // Whether edits are queued that count, so that compose() would make new content.
    [[nodiscard]] virtual bool modified() const = 0;

    // Reserved: false.
    [[nodiscard]] virtual bool reserved_query() const = 0;

    // The content's own name, in formats that have one; else empty.
    [[nodiscard]] virtual std::u16string_view label() const = 0;

    // The content with all edits. Null when nothing was changed, and, with an error in the status,
    // after a failure. The status is cleared first; each codec documents its codes.
    [[nodiscard]] virtual std::unique_ptr<scl::Scl_buffer> compose(scl::Scl_status& status) = 0;

    // The next content inside this one, in formats that contain others; else null. Begin with
    // cursor 0; the call moves it on, at the end to DFC_CURSOR_END.
    [[nodiscard]] virtual const scl::Scl_buffer* next_item(unsigned& cursor) {
        cursor = DFC_CURSOR_END;
        return nullptr;
    }

protected:
    Dfc_format_codec() = default;

private:
    bool modifiable_ = false;
    bool secondary_flag_ = false;
};

} // namespace dfc

#pragma GCC visibility pop
