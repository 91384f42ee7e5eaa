#pragma once

#include "txt/txt_text_view.hpp"

#include <cstdint>

namespace txtdfc {

class Txtdfc_format_codec;

// The view that a codec gives of its content.
class Txtdfc_text_view final : public txt::Txt_text_view {
public:
    static constexpr std::uint32_t TYPE = 0;

    Txtdfc_text_view(Txtdfc_format_codec& codec, txt::Txt_text_table* table)
        : Txt_text_view(TYPE, table), codec_(&codec) {}
    ~Txtdfc_text_view() override;

    // Not owned; owns this view.
    [[nodiscard]] Txtdfc_format_codec& codec() const { return *codec_; }

private:
    Txtdfc_format_codec* codec_;
};

// A token that knows where in the content its text lies. Its edits go into the codec's queue, by
// the rules of ucl::Ucl_buffer_patcher.
class Txtdfc_physical_token final : public txt::Txt_physical_token {
public:
    // The view must have kept the text. Offset and length are in bytes.
    Txtdfc_physical_token(std::uint32_t type, std::u16string_view text, Txtdfc_text_view& view,
                          std::uint64_t offset, std::uint64_t length)
        : Txt_physical_token(type, text, view),
          offset_(offset),
          length_(static_cast<std::uint16_t>(length)) {}

    [[nodiscard]] bool redact(std::size_t skip, std::size_t count) override;
    [[nodiscard]] bool replace_text(std::u16string_view text, std::u16string_view before,
                                    std::u16string_view after) override;
    [[nodiscard]] bool remove() override;

    [[nodiscard]] std::uint64_t content_offset() const { return offset_; }
    // Of a longer span only the low 16 bits.
    [[nodiscard]] std::uint16_t content_length() const { return length_; }

private:
    [[nodiscard]] Txtdfc_format_codec& codec() const;
    [[nodiscard]] std::uint64_t text_bytes() const;

    std::uint64_t offset_;
    std::uint16_t length_;
};

} // namespace txtdfc
