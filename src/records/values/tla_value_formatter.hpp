#pragma once

#include "records/values/field_descriptor.hpp"
#include "records/values/tla_formatters.hpp"
#include "records/values/tla_padded_buffer.hpp"
#include "scl/text/scl_text_span.hpp"
#include "txt/plain_runs.hpp"

#include <array>
#include <string>
#include <string_view>

namespace tla {

// Memory for formatted texts, reused from one value to the next.
struct Tla_value_buffer {
    Tla_padded_buffer<char> ascii;
    std::u16string wide;
};

// Brings values of one type into the form that their tokens are made from. Records and lookups both
// go this way: a value that they formatted differently would never be found. ASCII stays bytes, all
// else is UTF-16. Tested by Token_values.OfBytesAreThoseOfUnits and
// Value_tokens.OfALookupAreThoseOfARecord.
class Tla_value_formatter {
public:
    explicit Tla_value_formatter(const Formatter_type_id& type)
        : format_wide_(tla_wide_formatter(type)),
          format_ascii_(tla_ascii_formatter(type)),
          lowers_case_(type == Tla_simplenc_formatter::TYPE_ID) {}

    // False for a type that is none of the three; format() may not be called then.
    [[nodiscard]] bool is_known() const { return format_wide_ != nullptr; }

    // The formatted text: the value itself, where nothing changes, or in `buffer`.
    [[nodiscard]] scl::Scl_text_span<char> format(scl::Scl_text_span<char> ascii_value,
                                                  Tla_value_buffer& buffer) const {
        return format_ascii_(ascii_value, buffer.ascii);
    }
    // The same of a short run (txt::txt_is_short_run), which most values are. It has neither white
    // space at its ends nor separators, so that letter case is all that can change.
    [[nodiscard]] scl::Scl_text_span<char> format_run(scl::Scl_text_span<char> run,
                                                      Tla_value_buffer& buffer) const {
        return lowers_case_ ? Tla_simplenc_formatter::format_ascii(run, buffer.ascii) : run;
    }
    // The token value of the formatted text, when the value is a plain run
    // (txt::txt_plain_run_value), as most other values are; 0 for any other value.
    [[nodiscard]] std::uint64_t plain_run_value(scl::Scl_text_span<char> value) const {
        return txt::txt_plain_run_value(value, lowers_case_);
    }
    // The formatted text, in `buffer.wide`, of which `value` may view a part.
    [[nodiscard]] scl::Scl_text_span<char16_t> format(std::u16string_view value,
                                                      Tla_value_buffer& buffer) const {
        format_wide_(value, buffer.wide, false);
        return scl::scl_span_of(buffer.wide);
    }

private:
    Tla_wide_formatter format_wide_;
    Tla_ascii_formatter format_ascii_;
    bool lowers_case_;
};

} // namespace tla
