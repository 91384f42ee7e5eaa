#pragma once

#include "txt/txt_text_view.hpp"

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

} // namespace txtdfc
