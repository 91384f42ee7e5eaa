#pragma once

#include "records/tla_formatter_base.hpp"

namespace tla {

// The value, in NFC, is lower-cased, so that letter case makes no difference.
class Tla_simplenc_formatter final : public Tla_formatter_base {
public:
    static const std::string NAME;
    static constexpr Formatter_type_id TYPE_ID{0x42885afa1505ba28, 0x7f26ef287a21d68b};

    [[nodiscard]] const std::string& name() const override { return NAME; }
    [[nodiscard]] Formatter_type_id type_id() const override { return TYPE_ID; }
    void format(std::u16string_view input, std::u16string& output, bool raw) const override;
};

} // namespace tla
