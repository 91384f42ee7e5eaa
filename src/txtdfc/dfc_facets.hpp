#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace dfc {

// Names a facet: 16 bytes in GUID layout (the first three groups little-endian), ordered as bytes.
using Dfc_facet_id = std::array<std::uint8_t, 16>;
using Dfc_facet_set = std::set<Dfc_facet_id>;

// The cursor after the last item of an enumeration; the first one is 0.
inline constexpr unsigned DFC_CURSOR_END = 0xFFFFFFFF;

// One way to use a codec, asked for by its identifier (Dfc_format_codec::query_facet). A facet is
// part of its codec, and lives as long.
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

namespace txt {
class Txt_text_view; // declared only: callers that just add lines need not include it
}

namespace dff {

// {7BA02554-A55F-42FC-AAB9-6AEF8955BD71}
inline constexpr dfc::Dfc_facet_id DFF_TEXT_FACET_ID{
    0x54, 0x25, 0xA0, 0x7B, 0x5F, 0xA5, 0xFC, 0x42, 0xAA, 0xB9, 0x6A, 0xEF, 0x89, 0x55, 0xBD, 0x71};

// Reads a content as text.
class Dff_text_facet : public dfc::Dfc_format_facet {
public:
    [[nodiscard]] const dfc::Dfc_facet_id& facet_id() const override { return DFF_TEXT_FACET_ID; }
    ~Dff_text_facet() override = default;

    // The view with this index; null when there is none. Begin with cursor 0; the call moves it to
    // the next view, or to dfc::DFC_CURSOR_END behind the last. The codec owns the view, which
    // lives until other content is attached.
    [[nodiscard]] virtual txt::Txt_text_view* text_view(int index, unsigned& cursor) = 0;
};

// {A3FA5F0C-542C-4641-9ED1-8E6AE24A2EF4}
inline constexpr dfc::Dfc_facet_id DFF_ANNOTATION_FACET_ID{
    0x0C, 0x5F, 0xFA, 0xA3, 0x2C, 0x54, 0x41, 0x46, 0x9E, 0xD1, 0x8E, 0x6A, 0xE2, 0x4A, 0x2E, 0xF4};

// Adds lines to a content. True when the insert was queued. The text is copied. Lengths are in
// bytes; an odd one throws std::invalid_argument.
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

#pragma GCC visibility pop
