#pragma once

#include "records/values/tla_formatters.hpp"
#include "text_tokens.hpp"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace scan {

// A text in each form that fields of a data set are looked for in.
struct Text_forms {
    Text_forms(std::u16string_view text, std::span<const tla::Field_descriptor> fields)
        : original(text) {
        using Form = Text_tokens::Form;
        for (const tla::Field_descriptor& field : fields) {
            if (field.type == tla::Tla_simplenc_formatter::TYPE_ID) {
                if (!lower) lower.emplace(text, Form::lower_case);
            } else if (!simple) {
                const bool numbers =
                    std::ranges::find(fields, tla::Tla_ccnum_formatter::TYPE_ID,
                                      &tla::Field_descriptor::type) != fields.end();
                simple.emplace(text, numbers ? Form::simple_with_numbers : Form::simple);
            }
        }
    }

    // Card numbers are made of the tokens of the simple form.
    [[nodiscard]] const Text_tokens& of(const tla::Formatter_type_id& type) const {
        return type == tla::Tla_simplenc_formatter::TYPE_ID ? *lower : *simple;
    }

    std::u16string_view original;
    std::optional<Text_tokens> simple;
    std::optional<Text_tokens> lower;
};

} // namespace scan
