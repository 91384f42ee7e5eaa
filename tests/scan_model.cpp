#include "scan_model.hpp"

#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"
#include "txt/txt_token_walk.hpp"

#include <algorithm>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <tuple>

namespace test {

namespace {

// General categories, from the Unicode Character Database itself.
class Categories {
public:
    Categories() : categories_(0x110000, "Cn") {
        std::ifstream in(DSMAKE_UNICODE_DATA "/UnicodeData.txt");
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
bool is_nd(char32_t code) {
    return category(code) == "Nd";
}
bool is_plain_letter(char32_t c) {
    return (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z');
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

std::u16string form_of(std::u16string_view text, const std::string& type) {
    std::u16string form;
    tla::tla_create_formatter(tla::tla_formatter_type_id_from_name(type))
        ->format(text, form, false);
    return form;
}

std::u16string with_case(std::u16string text, char16_t first, char16_t last, int change) {
    for (char16_t& unit : text) {
        if (unit >= first && unit <= last) unit = static_cast<char16_t>(unit + change);
    }
    return text;
}

// The values of an item: as it is, with capitals, with small letters.
std::vector<std::uint64_t> item_values(const std::u16string& form) {
    if (form.empty()) return {};
    return {Small_reader::token(form), Small_reader::token(with_case(form, u'a', u'z', 'A' - 'a')),
            Small_reader::token(with_case(form, u'A', u'Z', 'a' - 'A'))};
}

} // namespace

Scan_model::Scan_model(const Small_reader& file, const std::vector<std::size_t>& keys,
                       std::string_view text)
    : file_(file), keys_(keys) {
    decode(text);
    words_ = tokens_of(text_);
    loose_ = loosened(text_);
    for (const auto& field : file.fields()) {
        auto& readings = readings_[field.type];
        if (field.type == "CCNUMBER" || !readings.empty()) continue;
        for (const Reading& reading : {text_, loose_, parted(loose_)}) {
            readings.push_back(tokens_in_form(reading, field.type));
        }
    }
    if (readings_.contains("CCNUMBER")) find_items();
}

std::vector<std::size_t> Scan_model::keys_of(const Small_reader& file) {
    std::vector<std::size_t> keys;
    for (const auto& table : file.tables()) {
        const auto field = std::ranges::find(file.fields(), table.name, &Small_reader::Field::name);
        const auto place = static_cast<std::size_t>(field - file.fields().begin());
        if (std::ranges::find(keys, place) == keys.end()) keys.push_back(place);
    }
    return keys;
}

void Scan_model::decode(std::string_view text) {
    std::uint64_t line = 1;
    for (std::size_t at = 0; at < text.size();) {
        bytes_.push_back(at);
        lines_.push_back(line);
        const char32_t code = scl::scl_utf8_next(text, at);
        text_.push_back({code, text_.size()});
        if (code == U'\n') ++line;
    }
    bytes_.push_back(text.size());
}

Scan_model::Reading Scan_model::loosened(Reading reading) {
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

Scan_model::Reading Scan_model::parted(Reading reading) {
    const Reading before = reading;
    for (std::size_t i = 1; i + 1 < reading.size(); ++i) {
        const bool parts = before[i].code == U'\'' &&
                           (is_l(before[i - 1].code) || is_m(before[i - 1].code)) &&
                           is_l(before[i + 1].code);
        if (parts) reading[i].code = U' ';
    }
    return reading;
}

std::u16string Scan_model::text_of(const Reading& reading) {
    std::u16string text;
    for (const Read_char& c : reading) {
        append(text, c.code);
    }
    return text;
}

// By the characters of the reading.
std::vector<Scan_model::Span> Scan_model::tokens_of(const Reading& reading) {
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
std::vector<Scan_model::Token> Scan_model::tokens_in_form(const Reading& reading,
                                                          const std::string& type) {
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

bool Scan_model::is_gap(std::size_t from, std::size_t to) const {
    return std::all_of(loose_.begin() + static_cast<std::ptrdiff_t>(from),
                       loose_.begin() + static_cast<std::ptrdiff_t>(to), [](const Read_char& c) {
                           return c.code == U'-' || scl::scl_is_white_space(c.code);
                       });
}

void Scan_model::find_items() {
    const std::vector<Span> words = tokens_of(loose_);
    for (const Span& word : words) {
        const Reading part(loose_.begin() + static_cast<std::ptrdiff_t>(word.first),
                           loose_.begin() + static_cast<std::ptrdiff_t>(word.last) + 1);
        items_.push_back({word, item_values(form_of(text_of(part), "CCNUMBER")), true});
    }
    add_stretches(words);
    std::erase_if(items_, [](const Item& item) { return item.values.empty(); });
    for (const Span& word : words_) {
        const Reading part(text_.begin() + static_cast<std::ptrdiff_t>(word.first),
                           text_.begin() + static_cast<std::ptrdiff_t>(word.last) + 1);
        const std::u16string form = form_of(text_of(part), "CCNUMBER");
        if (!form.empty()) written_numbers_.push_back({Small_reader::token(form), word});
    }
}

void Scan_model::add_stretches(const std::vector<Span>& words) {
    const auto has_digit = [this](const Span& word) {
        return std::any_of(loose_.begin() + static_cast<std::ptrdiff_t>(word.first),
                           loose_.begin() + static_cast<std::ptrdiff_t>(word.last) + 1,
                           [](const Read_char& c) { return is_nd(c.code); });
    };
    const auto is_group = [&](const Span& word) {
        for (std::size_t at = word.first; at <= word.last; ++at) {
            if (!is_plain_letter(loose_[at].code) && !is_nd(loose_[at].code)) return false;
        }
        return has_digit(word) || word.last - word.first < 4;
    };
    for (std::size_t first = 0; first < words.size(); ++first) {
        Reading stretch;
        for (std::size_t i = first, last = first; i < words.size(); ++i) {
            const Span& word = words[i];
            if (i > first && word.first == word.last && loose_[word.first].code == U'-') continue;
            if (!is_group(word)) break;
            if (i > first) {
                const std::size_t from = words[last].last + 1;
                const auto line_ends =
                    std::count_if(loose_.begin() + static_cast<std::ptrdiff_t>(from),
                                  loose_.begin() + static_cast<std::ptrdiff_t>(word.first),
                                  [](const Read_char& c) { return c.code == U'\n'; });
                const std::size_t characters = word.first - from;
                const bool joins = characters >= 1 && characters <= 8 && line_ends <= 1 &&
                                   is_gap(from, word.first);
                if (!joins) break;
            }
            stretch.insert(stretch.end(), loose_.begin() + static_cast<std::ptrdiff_t>(word.first),
                           loose_.begin() + static_cast<std::ptrdiff_t>(word.last) + 1);
            last = i;
            if (i == first || stretch.size() > 64) continue;
            if (!has_digit(words[first]) && !has_digit(word)) continue;
            const std::u16string form = form_of(text_of(stretch), "CCNUMBER");
            items_.push_back({{words[first].first, word.last}, item_values(form), false});
        }
    }
}

std::vector<Scan_model::Span> Scan_model::number_occurrences(const Values& values) const {
    std::vector<Span> found;
    for (const Token& word : written_numbers_) {
        if (Values{word.value} == values) found.push_back(word.span);
    }
    for (const Item& item : items_) {
        const bool may_begin = item.is_word || values.size() <= 16;
        if (may_begin && std::ranges::find(item.values, values.front()) != item.values.end()) {
            follow_items(values, 1, item.span.first, item.span.last, found);
        }
    }
    return found;
}

void Scan_model::follow_items(const Values& values, std::size_t at, std::size_t first,
                              std::size_t last, std::vector<Span>& found) const {
    if (at == values.size()) {
        found.push_back({loose_[first].origin, loose_[last].origin});
        return;
    }
    for (const Item& item : items_) {
        if (item.span.first <= last || !is_gap(last + 1, item.span.first)) continue;
        if (!item.is_word && values.size() > 16) continue;
        if (std::ranges::find(item.values, values[at]) == item.values.end()) continue;
        follow_items(values, at + 1, first, item.span.last, found);
    }
}

std::vector<Scan_model::Span> Scan_model::occurrences(const Values& values,
                                                      const std::string& type) const {
    if (values.empty()) return {};
    if (type == "CCNUMBER") return number_occurrences(values);
    std::vector<Span> found;
    for (const std::vector<Token>& tokens : readings_.at(type)) {
        for (std::size_t i = 0; i + values.size() <= tokens.size(); ++i) {
            const bool fits = std::equal(
                values.begin(), values.end(), tokens.begin() + static_cast<std::ptrdiff_t>(i),
                [](std::uint64_t value, const Token& t) { return value == t.value; });
            if (fits) {
                found.push_back({tokens[i].span.first, tokens[i + values.size() - 1].span.last});
            }
        }
    }
    return found;
}

std::size_t Scan_model::word_of(std::size_t character) const {
    const auto behind = std::ranges::upper_bound(words_, character, {}, &Span::first);
    const auto count = static_cast<std::size_t>(behind - words_.begin());
    return count == 0 ? 0 : count - 1;
}

bool Scan_model::is_within(const Span& span, const Span& key,
                           std::optional<std::uint64_t> within) const {
    if (!within) return true;
    const std::size_t first = word_of(span.first);
    const std::size_t last = word_of(span.last);
    return first + *within >= word_of(key.first) && last <= word_of(key.last) + *within;
}

std::optional<Scan_model::Best> Scan_model::best_of(const std::vector<std::vector<Span>>& places,
                                                    std::size_t least,
                                                    std::optional<std::uint64_t> within) const {
    std::optional<Best> best;
    for (std::size_t order = 0; order < keys_.size(); ++order) {
        for (const Span& place : places[keys_[order]]) {
            Best here{place, order, {}};
            for (std::size_t field = 0; field < places.size(); ++field) {
                const bool occurs = std::ranges::any_of(places[field], [&](const Span& other) {
                    return is_within(other, place, within);
                });
                if (occurs) here.fields.push_back(field);
            }
            const auto rank = [](const Best& b) {
                return std::tuple(b.place.first, b.order, b.place.last);
            };
            if (here.fields.size() < least) continue;
            if (!best || rank(here) < rank(*best)) best = std::move(here);
        }
    }
    return best;
}

std::vector<Scan_model::Find> Scan_model::finds(std::size_t least,
                                                std::optional<std::uint64_t> within) const {
    std::vector<Find> finds;
    std::map<std::pair<std::string, Values>, std::vector<Span>> known;
    for (const std::uint64_t record : file_.records()) {
        std::vector<std::vector<Span>> places;
        for (std::size_t field = 0; field < file_.fields().size(); ++field) {
            const std::string& type = file_.fields()[field].type;
            const Values values = file_.values(record, field);
            const auto [entry, is_new] = known.try_emplace({type, values});
            if (is_new) entry->second = occurrences(values, type);
            places.push_back(entry->second);
        }
        const auto best = best_of(places, least, within);
        if (!best) continue;
        const std::uint64_t begin = bytes_[best->place.first];
        finds.push_back({lines_[best->place.first], begin, bytes_[best->place.last + 1] - begin,
                         keys_[best->order], record, best->fields});
    }
    std::ranges::stable_sort(finds, {}, &Find::place); // in the order of the records before
    return finds;
}

} // namespace test
