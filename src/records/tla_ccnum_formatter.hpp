#pragma once

#include "records/tla_formatter_base.hpp"

namespace tla {

// The value, in NFC, loses its hyphens (U+002D) and blanks (U+0020), and nothing else: any text of
// any length passes.
class Tla_ccnum_formatter final : public Tla_formatter_base {
public:
    static const std::string NAME;
    static constexpr Formatter_type_id TYPE_ID{0x410d0a7f84f1b08f, 0x5fcac1114426cdaa};

    [[nodiscard]] const std::string& name() const override { return NAME; }
    [[nodiscard]] Formatter_type_id type_id() const override { return TYPE_ID; }
    void format(std::u16string_view input, std::u16string& output, bool raw) const override;
};

} // namespace tla
