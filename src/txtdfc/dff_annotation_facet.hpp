#pragma once

#include "txtdfc/dfc_format_facet.hpp"

#include <cstddef>
#include <string_view>

namespace dff {

// {A3FA5F0C-542C-4641-9ED1-8E6AE24A2EF4}
inline constexpr dfc::Dfc_facet_id DFF_ANNOTATION_FACET_ID{
    0x0C, 0x5F, 0xFA, 0xA3, 0x2C, 0x54, 0x41, 0x46, 0x9E, 0xD1, 0x8E, 0x6A, 0xE2, 0x4A, 0x2E, 0xF4};

// Content that text can be added to, as lines of its own. Lengths are in bytes. The result tells
// whether the insert was queued.
class Dff_annotation_facet : public dfc::Dfc_format_facet {
public:
    [[nodiscard]] const dfc::Dfc_facet_id& facet_id() const override {
        return DFF_ANNOTATION_FACET_ID;
    }
    ~Dff_annotation_facet() override = default;

    virtual bool insert_content_front(std::u16string_view text) = 0;
    virtual bool insert_content_back(std::u16string_view text) = 0;
    virtual bool insert_content_front(const char16_t* data, std::size_t length) = 0;
    virtual bool insert_content_back(const char16_t* data, std::size_t length) = 0;
};

} // namespace dff
