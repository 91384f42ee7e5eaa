#pragma once

#include "records/formatter_type_id.hpp"

#include <string>
#include <string_view>

namespace tla {

// Brings a field's value into the form that its tokens are made from, so that values that should
// match become equal. Holds no state: one object serves any number of values.
class Tla_formatter_base {
public:
    Tla_formatter_base() = default;
    Tla_formatter_base(const Tla_formatter_base&) = delete;
    Tla_formatter_base& operator=(const Tla_formatter_base&) = delete;
    virtual ~Tla_formatter_base() = default;

    [[nodiscard]] virtual const std::string& name() const = 0;
    [[nodiscard]] virtual Formatter_type_id type_id() const = 0;

    // Replaces `output`, of which `input` may view a part. `raw` leaves out the normalisation to
    // NFC; a value that is not well-formed UTF-16 is never normalised.
    virtual void format(std::u16string_view input, std::u16string& output, bool raw) const = 0;

protected:
    static void copy_normalised(std::u16string_view input, std::u16string& output, bool raw);
};

} // namespace tla
