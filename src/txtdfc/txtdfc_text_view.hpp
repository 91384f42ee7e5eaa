#pragma once

#include "txt/txt_text_view.hpp"

#include <cstdint>

#pragma GCC visibility push(default) // installed

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
// the rules of ucl::Ucl_buffer_patcher, which may refuse them; they are false as well, and nothing
// is queued, unless the codec is modifiable.
class Txtdfc_physical_token final : public txt::Txt_physical_token {
public:
    // The view must have kept the text. Offset and length are in bytes.
    Txtdfc_physical_token(std::uint32_t type, std::u16string_view text, Txtdfc_text_view& view,
                          std::uint64_t offset, std::uint64_t length)
        : Txt_physical_token(type, text, view),
          offset_(offset),
          length_(static_cast<std::uint16_t>(length)) {}

    // One edit. When the last character skipped has several characters that attach to it, only the
    // first of these stays; likewise only one goes with the last character overwritten. make_safe()
    // leaves none.
    [[nodiscard]] bool redact(std::size_t skip, std::size_t count) override;
    // Up to three edits: before the text, of it, and after it. When one is refused, those before it
    // stay queued; a transaction can take them back.
    [[nodiscard]] bool replace_text(std::u16string_view text, std::u16string_view before,
                                    std::u16string_view after) override;
    [[nodiscard]] bool replace_run(const Txt_physical_token& back,
                                   std::u16string_view text) override;
    [[nodiscard]] bool remove() override;

    // In bytes, both.
    [[nodiscard]] std::uint64_t content_offset() const { return offset_; }
    // Of a longer span only the low 16 bits: a token has no room for more. Edits go by the text.
    [[nodiscard]] std::uint16_t content_length() const { return length_; }

private:
    [[nodiscard]] Txtdfc_format_codec& codec() const;
    [[nodiscard]] std::uint64_t text_bytes() const;
    [[nodiscard]] std::uint64_t content_end() const { return offset_ + text_bytes(); }

    std::uint64_t offset_;
    std::uint16_t length_;
};

} // namespace txtdfc

#pragma GCC visibility pop
