#include "text_tokens.hpp"

#include "records/values/tla_formatted_text.hpp"
#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/txt_token_walk.hpp"

#include <algorithm>
#include <stdexcept>

namespace scan {

namespace {

constexpr char16_t HYPHEN = u'-';
constexpr char16_t BLANK = u' ';

bool is_digits(std::u16string_view token) {
    for (std::size_t at = 0; at < token.size();) {
        if (!scl::scl_is_decimal_digit(scl::scl_utf16_next(token, at))) return false;
    }
    return true;
}

// Gathers the numbers while the tokens of a form go by.
class Number_reader {
public:
    explicit Number_reader(Number_runs& numbers) : numbers_(numbers) {}

    void take(std::uint32_t token, const char16_t* begin, const char16_t* end) {
        const std::u16string_view text(begin, static_cast<std::size_t>(end - begin));
        if (is_digits(text)) {
            const bool joined = group_end_ != nullptr && begin - group_end_ == 1 &&
                                (*group_end_ == BLANK || *group_end_ == HYPHEN);
            numbers_.add_group(token, text, joined);
            group_end_ = end;
        } else if (text.front() == HYPHEN && text.size() > 1) {
            // A hyphen with marks on it, which are left when it is removed.
            formatter_.format(text, form_, false);
            numbers_.add_other(token, form_);
            group_end_ = nullptr;
        }
    }

private:
    Number_runs& numbers_;
    const char16_t* group_end_ = nullptr;
    tla::Tla_ccnum_formatter formatter_;
    std::u16string form_;
};

// But for the one of no length that stands for the blanks which a text begins with.
template <typename Take>
void each_token(std::u16string_view text, Take take) {
    txt::txt_walk_tokens(scl::scl_span_of(text), [&](const char16_t* begin, const char16_t* end) {
        if (begin != end) take(begin, end);
    });
}

tla::Formatter_type_id type_of(Text_tokens::Form form) {
    return form == Text_tokens::Form::lower_case ? tla::Tla_simplenc_formatter::TYPE_ID
                                                 : tla::Tla_simple_formatter::TYPE_ID;
}

} // namespace

// A group that stayed alone is not kept: nearly all numbers of most texts are.
void Number_runs::add_group(std::uint32_t token, std::u16string_view digits, bool joined) {
    if (ends_alone_ && !joined) {
        digits_.resize(begin_of(groups_.size() - 1));
        groups_.pop_back();
    }
    digits_ += digits;
    groups_.push_back({digits_.size(), token, joined});
    ends_alone_ = !joined;
}

void Number_runs::add_other(std::uint32_t token, std::u16string_view text) {
    add_group(token, text, false);
    ends_alone_ = false;
}

std::size_t Number_runs::end_of_run(std::size_t group) const {
    do {
        ++group;
    } while (group < groups_.size() && groups_[group].joined);
    return group;
}

std::uint64_t Number_runs::most_values() const {
    std::uint64_t count = 0;
    for (std::size_t run = 0; run < groups_.size();) {
        const std::size_t groups = end_of_run(run) - run;
        count += groups * std::min(groups, MOST_DIGITS) + 1; // the run itself may be longer
        run += groups;
    }
    return count;
}

Text_tokens::Text_tokens(std::u16string_view original, Form form) {
    const tla::Tla_formatted_text in_form(original, type_of(form));
    const char16_t* const start = in_form.text().data();
    make_room(in_form.text());
    Number_reader reader(numbers);
    each_token(in_form.text(), [&](const char16_t* begin, const char16_t* end) {
        if (form == Form::simple_with_numbers) {
            reader.take(static_cast<std::uint32_t>(values.size()), begin, end);
        }
        values.push_back(txt::txt_token_value(scl::Scl_text_span<char16_t>{begin, end}));
        places.push_back(in_form.original_offset(static_cast<std::size_t>(begin - start)));
    });
}

// Counted first: lists that grow would take up to three times their memory for a moment.
void Text_tokens::make_room(std::u16string_view text) {
    std::size_t count = 0;
    each_token(text, [&count](const char16_t*, const char16_t*) { ++count; });
    if (count > MOST_TOKENS) throw std::length_error("too many tokens");
    values.reserve(count);
    places.reserve(count);
}

std::size_t Text_tokens::end_of(std::size_t token, std::u16string_view original) const {
    const std::size_t limit = token + 1 < places.size() ? places[token + 1] : original.size();
    const auto from = original.begin() + static_cast<std::ptrdiff_t>(places[token]);
    const auto to = original.begin() + static_cast<std::ptrdiff_t>(limit);
    const auto space = std::find_if(from, to, scl::scl_is_white_space);
    return static_cast<std::size_t>(space - original.begin());
}

} // namespace scan
