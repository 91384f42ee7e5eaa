#include "scan_model.hpp"

#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"

#include <algorithm>
#include <string>
#include <tuple>

namespace test {

namespace {

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

std::vector<Span> Scan_model::number_occurrences(const Values& values) const {
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

std::vector<Span> Scan_model::occurrences(const Values& values, const std::string& type) const {
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
