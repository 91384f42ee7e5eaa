#pragma once

#include "scl/io/scl_buffer.hpp"
#include "scl/text/scl_string.hpp"
#include "txtdfc/dfc_facets.hpp"

#include <memory>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace dfc {

// Gives the content of one format its facets. Through them changes are queued, which show in the
// content that compose() makes; the attached content itself never changes.
class Dfc_format_codec {
public:
    Dfc_format_codec(const Dfc_format_codec&) = delete;
    Dfc_format_codec& operator=(const Dfc_format_codec&) = delete;
    virtual ~Dfc_format_codec() = default;

    // Null when the codec has no such facet, or was not granted it. The codec owns its facets.
    [[nodiscard]] virtual Dfc_format_facet* query_facet(const Dfc_facet_id& id) = 0;

    // Takes other content, which is not changed and must outlive its use here. What was queued is
    // dropped, and an open transaction rolled back. Never throws: what is thrown inside becomes
    // SCL_STATUS_NO_MEMORY, SCL_STATUS_EXCEPTION with the exception's message, or
    // SCL_STATUS_UNKNOWN_EXCEPTION. The status is cleared first.
    virtual void attach(const scl::Scl_buffer* content, scl::Scl_status& status) = 0;

    // Whether changes may be queued; false at first.
    virtual void set_modifiable(bool modifiable) { modifiable_ = modifiable; }
    [[nodiscard]] virtual bool modifiable() const { return modifiable_; }

    // For the use of the codec's owner; false at first.
    virtual void set_secondary_flag(bool flag) { secondary_flag_ = flag; }
    [[nodiscard]] virtual bool secondary_flag() const { return secondary_flag_; }

    // What is queued in a transaction counts once it is committed; rolled back, it is forgotten.
    // Transactions do not nest. The results: whether one was begun, or was there to end.
    virtual bool begin_transaction() = 0;
    virtual bool commit_transaction() = 0;
    virtual bool rollback_transaction() = 0;
    [[nodiscard]] virtual bool in_transaction() const = 0;

    // Whether compose() would make other content.
    [[nodiscard]] virtual bool modified() const = 0;

    // Reserved: false.
    [[nodiscard]] virtual bool reserved_query() const = 0;

    // A name of the content's own, if the format has such; else empty.
    [[nodiscard]] virtual std::u16string_view label() const = 0;

    // The content with all changes; null when nothing was changed, or, with an error in the status,
    // when it failed. The status is cleared first; what it can hold then is for the codec to say.
    [[nodiscard]] virtual std::unique_ptr<scl::Scl_buffer> compose(scl::Scl_status& status) = 0;

    // The next content within this one, in formats that have such; else null. The cursor, 0 to
    // begin with, becomes the one to go on with, or DFC_CURSOR_END.
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
