#include "records/values/tla_formatted_text.hpp"
#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_case.hpp"
#include "scl/text/scl_normalize.hpp"
#include "scl/text/scl_string.hpp"
#include "scl/text/scl_utf.hpp"
#include "tla/scan/character_sets.hpp"
#include "tla/scan/chunk_reader.hpp"
#include "tla/scan/number_words.hpp"
#include "txt/txt_token_types.hpp"

#include <algorithm>
#include <numeric>

// A chunk that is not ASCII. Few chunks are worked out here, as each different one is, if it is
// not long, seldom more than once: so this goes the straight way, form by form.
namespace tla {

namespace {

// The same walk as over bytes.
template <typename Take>
void each_token(std::u16string_view text, Take take) {
    each_token(scl::scl_span_of(text), take);
}

const Formatter_type_id& type_of(Value_kind kind) {
    return kind == Value_kind::simple  ? Tla_simple_formatter::TYPE_ID
           : kind == Value_kind::lower ? Tla_simplenc_formatter::TYPE_ID
                                       : Tla_ccnum_formatter::TYPE_ID;
}

// A byte that is no UTF-8 became one unit of its own, and leads back to one byte.
std::size_t utf8_size(char32_t c) {
    const bool is_byte = c >= 0xDC80 && c <= 0xDCFF;
    return c < 0x80 || is_byte ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
}

} // namespace

// Units of UTF-16, and for each the byte that it comes from.
void Chunk_reader::widen(std::string_view chunk) {
    scl::scl_stow(chunk, wide_);
    byte_offsets_.clear();
    std::size_t bytes = 0;
    for (std::size_t at = 0; at < wide_.size();) {
        const std::size_t from = at;
        const char32_t c = scl::scl_utf16_next(wide_, at);
        // Both units of a pair lead to its front: only its first one is ever asked for.
        byte_offsets_.insert(byte_offsets_.end(), at - from, static_cast<std::uint32_t>(bytes));
        bytes += utf8_size(c);
    }
    byte_offsets_.push_back(static_cast<std::uint32_t>(bytes));
}

// The last character of a span is a whole one, so that the unit behind it begins the next.
Chunk_span Chunk_reader::wide_span(std::size_t begin, std::size_t end,
                                   const std::vector<std::uint32_t>* origins) const {
    if (origins != nullptr) {
        begin = (*origins)[begin];
        end = (*origins)[end - 1] + 1;
    }
    return {byte_offsets_[begin], byte_offsets_[end]};
}

void Chunk_reader::read_wide(std::string_view chunk) {
    widen(chunk);
    each_token(wide_, [this](std::size_t begin, std::size_t end) {
        words_.words.push_back(wide_span(begin, end, nullptr));
    });
    const bool is_loosened = loosen(wide_, wide_loosened_);
    const std::u16string_view loose =
        is_loosened ? std::u16string_view(wide_loosened_.text) : std::u16string_view(wide_);
    wide_parted_.assign(loose);
    const bool is_parted = part(wide_parted_);
    const auto* const origins = is_loosened ? &wide_loosened_.origins : nullptr;

    add_wide_reading(readings_as_written(is_loosened, is_parted), wide_, nullptr);
    if (is_loosened) add_wide_reading(readings_as_loosened(is_parted), loose, origins);
    if (is_parted) add_wide_reading(READING_PARTED, wide_parted_, origins);

    if (!wants(Value_kind::number)) return;
    add_wide_numbers(loose, origins);
    if (is_loosened) add_wide_written_numbers();
}

// A number is looked for in words as written, too: what is loosened may have cut it.
void Chunk_reader::add_wide_written_numbers() {
    const Tla_ccnum_formatter formatter;
    each_token(wide_, [&](std::size_t begin, std::size_t end) {
        formatter.format(std::u16string_view(wide_).substr(begin, end - begin), number_form_,
                         false);
        if (number_form_.empty()) return;
        words_.written_numbers.push_back(
            {txt::txt_token_value(number_form_), wide_span(begin, end, nullptr)});
    });
}

// Both forms, so that those of one reading have one index.
void Chunk_reader::add_wide_reading(std::uint8_t readings, std::u16string_view text,
                                    const std::vector<std::uint32_t>* origins) {
    for (const Value_kind kind : {Value_kind::simple, Value_kind::lower}) {
        add_wide_form(kind, readings, text, origins);
    }
    ++words_.reading_count;
}

void Chunk_reader::add_wide_form(Value_kind kind, std::uint8_t readings, std::u16string_view text,
                                 const std::vector<std::uint32_t>* origins) {
    Reading_tokens& reading = reading_of(static_cast<std::size_t>(kind), readings);
    if (!wants(kind)) return;
    format(kind, text);
    each_token(formatted_, [&](std::size_t begin, std::size_t end) {
        const auto token = std::u16string_view(formatted_).substr(begin, end - begin);
        // Marks that stand alone and changed their order lead to any of them.
        const std::size_t first = unit_offsets_[begin];
        const std::size_t last = std::max<std::size_t>(unit_offsets_[end], first + 1);
        reading.tokens.push_back({txt::txt_token_value(token), wide_span(first, last, origins)});
    });
}

// Into formatted_ and unit_offsets_. The formatters leave a text with a lone surrogate as it is,
// but for its letter case; so each stretch between those is formatted by itself. For letter case
// they end a word, as the end of a text does.
void Chunk_reader::format(Value_kind kind, std::u16string_view text) {
    formatted_.clear();
    unit_offsets_.clear();
    // Plain text is in its normal form, and only letter case can change it. Offsets then are what
    // they were, unless lower-casing made a unit more.
    if (scl::scl_is_plain(text)) {
        formatted_.assign(text);
        if (kind == Value_kind::lower) scl::scl_lower_normalized(formatted_);
        if (formatted_.size() == text.size()) {
            unit_offsets_.resize(text.size() + 1);
            std::iota(unit_offsets_.begin(), unit_offsets_.end(), std::uint32_t{0});
            return;
        }
        formatted_.clear();
    }
    std::size_t begin = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t from = at;
        if (!scl::scl_is_surrogate(scl::scl_utf16_next(text, at))) continue;
        append_formatted(kind, text.substr(begin, from - begin), begin);
        formatted_ += text[from];
        unit_offsets_.push_back(static_cast<std::uint32_t>(from));
        begin = at;
    }
    append_formatted(kind, text.substr(begin), begin);
    unit_offsets_.push_back(static_cast<std::uint32_t>(text.size()));
}

// Each unit of the form leads to the one that it was made of; marks that were put together lead to
// the first of them.
void Chunk_reader::append_formatted(Value_kind kind, std::u16string_view text, std::size_t offset) {
    const Tla_formatted_text form(text, type_of(kind));
    for (std::size_t at = 0; at < form.text().size(); ++at) {
        unit_offsets_.push_back(static_cast<std::uint32_t>(offset + form.original_offset(at)));
    }
    formatted_ += form.text();
}

namespace {

// As it is, with a to z as capitals, with A to Z as small letters.
void add_values(Number_word& word, std::u16string& form) {
    if (form.empty()) return;
    add_value(word, txt::txt_token_value(form));
    const auto with = [&form, &word](char16_t first, char16_t last, int change) {
        for (char16_t& unit : form) {
            if (unit >= first && unit <= last) unit = static_cast<char16_t>(unit + change);
        }
        add_value(word, txt::txt_token_value(form));
    };
    std::u16string original = form;
    with(u'a', u'z', 'A' - 'a');
    form.swap(original);
    with(u'A', u'Z', 'a' - 'A');
}

// Whether the word is a group, and of how many characters.
void classify(Number_word& word, std::u16string_view text) {
    std::uint32_t letters = 0;
    std::uint32_t digits = 0;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = scl::scl_utf16_next(text, at);
        letters += is_plain_letter(c) ? 1 : 0;
        digits += is_digit(c) ? 1 : 0;
        ++word.characters;
    }
    word.has_digit = digits > 0;
    word.is_group =
        letters + digits == word.characters && (word.has_digit || letters <= MOST_GROUP_LETTERS);
}

} // namespace

// A group may have digits of any script, as a table may.
void Chunk_reader::add_wide_numbers(std::u16string_view text,
                                    const std::vector<std::uint32_t>* origins) {
    const Tla_ccnum_formatter formatter;
    each_number_word(
        words_, scl::scl_span_of(text), [&](Number_word& word, std::size_t begin, std::size_t end) {
            const std::u16string_view token = text.substr(begin, end - begin);
            word.span = wide_span(begin, end, origins);
            formatter.format(token, number_form_, false);
            add_values(word, number_form_);
            classify(word, token);
            if (word.is_group) {
                word.text.begin = static_cast<std::uint32_t>(words_.number_text.size());
                words_.number_text += token;
                word.text.end = static_cast<std::uint32_t>(words_.number_text.size());
            }
        });
}

} // namespace tla
