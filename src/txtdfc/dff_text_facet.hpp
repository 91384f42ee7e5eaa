#pragma once

#include "txtdfc/dfc_format_facet.hpp"

#include <cstdint>

namespace txt {
class Txt_text_view;
}

namespace dff {

// {7BA02554-A55F-42FC-AAB9-6AEF8955BD71}
inline constexpr dfc::Dfc_facet_id DFF_TEXT_FACET_ID{
    0x54, 0x25, 0xA0, 0x7B, 0x5F, 0xA5, 0xFC, 0x42, 0xAA, 0xB9, 0x6A, 0xEF, 0x89, 0x55, 0xBD, 0x71};

// Content seen as text.
class Dff_text_facet : public dfc::Dfc_format_facet {
public:
    [[nodiscard]] const dfc::Dfc_facet_id& facet_id() const override { return DFF_TEXT_FACET_ID; }
    ~Dff_text_facet() override = default;

    // The view with this index; null when there is none. The cursor, 0 to begin with, becomes the
    // one to ask for the next view with, or dfc::DFC_CURSOR_END. The codec owns the view, which
    // lives until other content is attached.
    [[nodiscard]] virtual txt::Txt_text_view* text_view(int index, unsigned& cursor) = 0;
};

} // namespace dff
