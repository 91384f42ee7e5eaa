#include "scan_readings.hpp"

#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"
#include "small_reader.hpp"
#include "txt/txt_token_walk.hpp"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace test {

namespace {

// General categories, from the Unicode Character Database itself.
class Categories {
public:
    // Without the file every character would be of no category, and the model would find little.
    Categories() : categories_(0x110000, "Cn") {
        std::ifstream in(DSMAKE_UNICODE_DATA "/UnicodeData.txt");
        if (!in) throw std::runtime_error("There is no " DSMAKE_UNICODE_DATA "/UnicodeData.txt.");
        std::size_t range_from = 0;
        for (std::string line; std::getline(in, line);) {
            const std::size_t name = line.find(';') + 1;
            const std::size_t category = line.find(';', name) + 1;
            const std::size_t code = std::stoul(line, nullptr, 16);
            if (line.find("First>") != line.npos) range_from = code;
            const std::size_t first = line.find("Last>") != line.npos ? range_from : code;
            for (std::size_t at = first; at <= code; ++at) {
                categories_[at] = line.substr(category, 2);
            }
        }
    }
    [[nodiscard]] const std::string& of(char32_t code) const {
        return categories_.at(static_cast<std::size_t>(code));
    }

private:
    std::vector<std::string> categories_;
};

const std::string& category(char32_t code) {
    static const Categories CATEGORIES;
    return CATEGORIES.of(code);
}
bool is_l(char32_t code) {
    return category(code)[0] == 'L';
}
bool is_m(char32_t code) {
    return category(code)[0] == 'M';
}
bool is_surrogate(char32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

bool is_one_of(char32_t code, std::u32string_view set) {
    return set.find(code) != set.npos;
}

void append(std::u16string& text, char32_t code) {
    char16_t units[2];
    text.append(units, scl::scl_utf16_put(units, code));
}

} // namespace

bool is_nd(char32_t code) {
    return category(code) == "Nd";
}
bool is_plain_letter(char32_t c) {
    return (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z');
}

std::u16string form_of(std::u16string_view text, const std::string& type) {
    std::u16string form;
    tla::tla_create_formatter(tla::tla_formatter_type_id_from_name(type))
        ->format(text, form, false);
    return form;
}

Reading loosened(Reading reading) {
    std::erase_if(reading,
                  [](const Read_char& c) { return is_one_of(c.code, U"\u00AD\u2060\uFEFF"); });
    for (Read_char& c : reading) {
        if (c.code == 0x200B) c.code = U' ';
        if (is_one_of(c.code, U"`\u00B4\u02BC\u2018\u2019\uFF07")) c.code = U'\'';
        if (is_one_of(c.code, U"\u2010\u2011\u2012\u2013\u2014\u2015\u2212\uFE58\uFE63\uFF0D")) {
            c.code = U'-';
        }
    }
    const auto code_at = [](const Reading& text, std::size_t at) {
        return at < text.size() ? text[at].code : U'\n';
    };
    Reading joined = reading;
    for (std::size_t i = 0; i < reading.size(); ++i) {
        const char32_t before = code_at(reading, i - 1);
        const char32_t behind = code_at(reading, i + 1);
        const bool joins = is_one_of(reading[i].code, U".,:;") &&
                           (is_l(before) || is_m(before) || is_nd(before)) &&
                           (is_l(behind) || is_nd(behind));
        if (joins || reading[i].code == U'_') joined[i].code = U' ';
    }
    Reading result;
    for (std::size_t i = 0; i < joined.size(); ++i) {
        const char32_t before = code_at(joined, i - 1);
        const char32_t behind = code_at(joined, i + 2);
        const bool ends = joined[i].code == U'\'' && is_one_of(code_at(joined, i + 1), U"sS") &&
                          (is_l(before) || is_m(before)) && !is_l(behind) && !is_m(behind) &&
                          !is_nd(behind) && behind != U'\'';
        if (ends) {
            ++i;
        } else {
            result.push_back(joined[i]);
        }
    }
    return result;
}

Reading parted(Reading reading) {
    const Reading before = reading;
    for (std::size_t i = 1; i + 1 < reading.size(); ++i) {
        const bool parts = before[i].code == U'\'' &&
                           (is_l(before[i - 1].code) || is_m(before[i - 1].code)) &&
                           is_l(before[i + 1].code);
        if (parts) reading[i].code = U' ';
    }
    return reading;
}

std::u16string text_of(const Reading& reading) {
    std::u16string text;
    for (const Read_char& c : reading) {
        append(text, c.code);
    }
    return text;
}

// By the characters of the reading.
std::vector<Span> tokens_of(const Reading& reading) {
    std::vector<std::size_t> characters; // by unit
    for (std::size_t i = 0; i < reading.size(); ++i) {
        characters.insert(characters.end(), reading[i].code > 0xFFFF ? 2 : 1, i);
    }
    const std::u16string text = text_of(reading);
    std::vector<Span> tokens;
    txt::txt_walk_tokens(scl::scl_span_of(text), [&](const char16_t* begin, const char16_t* end) {
        if (begin == end) return;
        tokens.push_back({characters[static_cast<std::size_t>(begin - text.data())],
                          characters[static_cast<std::size_t>(end - text.data()) - 1]});
    });
    return tokens;
}

// The form is made of the stretches between lone surrogates. Which character of the text stands at
// a place of it, the form of what is before tells.
std::vector<Token> tokens_in_form(const Reading& reading, const std::string& type) {
    std::u16string form;
    std::vector<std::size_t> origins; // of the units of the form, places in the reading
    for (std::size_t i = 0; i < reading.size();) {
        if (is_surrogate(reading[i].code)) {
            append(form, reading[i].code);
            origins.push_back(i++);
            continue;
        }
        std::size_t end = i;
        while (end < reading.size() && !is_surrogate(reading[end].code)) {
            ++end;
        }
        const Reading stretch(reading.begin() + static_cast<std::ptrdiff_t>(i),
                              reading.begin() + static_cast<std::ptrdiff_t>(end));
        form += form_of(text_of(stretch), type);
        std::vector<std::size_t> sizes; // of the forms of what the stretch begins with
        for (std::size_t size = 0; size <= stretch.size(); ++size) {
            const Reading front(stretch.begin(),
                                stretch.begin() + static_cast<std::ptrdiff_t>(size));
            sizes.push_back(form_of(text_of(front), type).size());
        }
        for (std::size_t unit = 0; unit < sizes.back(); ++unit) {
            const auto behind = std::ranges::upper_bound(sizes, unit);
            origins.push_back(i + static_cast<std::size_t>(behind - sizes.begin()) - 1);
        }
        i = end;
    }
    origins.push_back(reading.size());
    std::vector<Token> tokens;
    txt::txt_walk_tokens(scl::scl_span_of(form), [&](const char16_t* begin, const char16_t* end) {
        if (begin == end) return;
        const auto from = static_cast<std::size_t>(begin - form.data());
        const auto to = static_cast<std::size_t>(end - form.data());
        const std::size_t first = origins[from];
        const std::size_t last = std::max(origins[to], first + 1) - 1;
        tokens.push_back({Small_reader::token(form.substr(from, to - from)),
                          {reading[first].origin, reading[last].origin}});
    });
    return tokens;
}

} // namespace test
