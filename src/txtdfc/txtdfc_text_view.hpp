#pragma once

#include "txt/txt_text_view.hpp"

#include <cstdint>

#pragma GCC visibility push(default) // installed

namespace txtdfc {

class Txtdfc_format_codec;

// A codec's view of its content.
class Txtdfc_text_view final : public txt::Txt_text_view {
public:
    static constexpr std::uint32_t TYPE = 0;

    Txtdfc_text_view(Txtdfc_format_codec& codec, txt::Txt_text_table* table)
        : Txt_text_view(TYPE, table), codec_(&codec) {}
    ~Txtdfc_text_view() override;

    // The codec owns this view.
    [[nodiscard]] Txtdfc_format_codec& codec() const { return *codec_; }

private:
    Txtdfc_format_codec* codec_;
};

// A token that knows the offset of its text in the content. Its edits go to the codec's queue, by
// the rules of ucl::Ucl_buffer_patcher. An edit returns false, and queues nothing, when the codec
// is not modifiable or the patcher refuses it.
class Txtdfc_physical_token final : public txt::Txt_physical_token {
public:
    // The view must have kept the text. Offset and length are in bytes.
    Txtdfc_physical_token(std::uint32_t type, std::u16string_view text, Txtdfc_text_view& view,
                          std::uint64_t offset, std::uint64_t length)
        : Txt_physical_token(type, text, view),
          offset_(offset),
          length_(static_cast<std::uint16_t>(length)) {}

    // One edit. Of several marks on the last skipped character only the first stays; of several on
    // the last overwritten one only the first goes. make_safe() leaves no mark.
    [[nodiscard]] bool redact(std::size_t skip, std::size_t count) override;
    // Up to three edits: before the text, of the text, and behind it. When one is refused, earlier
    // ones stay queued; a transaction can roll them back.
    [[nodiscard]] bool replace_text(std::u16string_view text, std::u16string_view before,
                                    std::u16string_view after) override;
    [[nodiscard]] bool replace_run(const Txt_physical_token& back,
                                   std::u16string_view text) override;
    [[nodiscard]] bool remove() override;

    // Both in bytes.
    [[nodiscard]] std::uint64_t content_offset() const { return offset_; }
    // Only the low 16 bits, to keep tokens small. Edits use the length of the text instead.
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
