#pragma once

#include "scl/scl_buffer.hpp"
#include "txtdfc/dfc_format_facet.hpp"

namespace dfc {

// Gives the content of one format its facets.
class Dfc_format_codec {
public:
    Dfc_format_codec(const Dfc_format_codec&) = delete;
    Dfc_format_codec& operator=(const Dfc_format_codec&) = delete;
    virtual ~Dfc_format_codec() = default;

    // Null when the codec has no such facet, or was not granted it. The codec owns its facets.
    [[nodiscard]] virtual Dfc_format_facet* query_facet(const Dfc_facet_id& id) = 0;

    // Takes other content, which is not changed and must outlive its use here. Never throws.
    virtual void attach(const scl::Scl_buffer* content, scl::Scl_status& status) = 0;

    // Whether the content may be edited; false at first.
    virtual void set_modifiable(bool modifiable) { modifiable_ = modifiable; }
    [[nodiscard]] virtual bool modifiable() const { return modifiable_; }

    // For the use of the codec's owner; false at first.
    virtual void set_secondary_flag(bool flag) { secondary_flag_ = flag; }
    [[nodiscard]] virtual bool secondary_flag() const { return secondary_flag_; }

protected:
    Dfc_format_codec() = default;

private:
    bool modifiable_ = false;
    bool secondary_flag_ = false;
};

} // namespace dfc
