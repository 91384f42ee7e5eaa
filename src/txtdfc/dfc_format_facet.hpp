#pragma once

#include "txtdfc/dfc_facet_id.hpp"

namespace dfc {

// A cursor that ends an enumeration.
inline constexpr unsigned DFC_CURSOR_END = 0xFFFFFFFF;

// One side of a codec, asked for by its identifier.
class Dfc_format_facet {
public:
    Dfc_format_facet(const Dfc_format_facet&) = delete;
    Dfc_format_facet& operator=(const Dfc_format_facet&) = delete;

    [[nodiscard]] virtual const Dfc_facet_id& facet_id() const = 0;
    virtual ~Dfc_format_facet() = default;

protected:
    Dfc_format_facet() = default;
};

} // namespace dfc
