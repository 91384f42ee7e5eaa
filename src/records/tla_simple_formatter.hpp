#pragma once

#include "records/tla_formatter_base.hpp"

namespace tla {

// The value, in NFC, is taken as it stands, in its letter case and with all its characters.
class Tla_simple_formatter final : public Tla_formatter_base {
public:
    static const std::string NAME;
    static constexpr Formatter_type_id TYPE_ID{0x407a3fd46ed199e8, 0xa63ffdf7b9325888};

    [[nodiscard]] const std::string& name() const override { return NAME; }
    [[nodiscard]] Formatter_type_id type_id() const override { return TYPE_ID; }
    void format(std::u16string_view input, std::u16string& output, bool raw) const override;
};

} // namespace tla
