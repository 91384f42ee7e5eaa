#include "program.hpp"
#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_string.hpp"
#include "scl/text/scl_unicode.hpp"
#include "small_reader.hpp"
#include "txt/txt_token_walk.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>

namespace {

const std::string SCAN = "'" DSMAKE_SCAN "' ";
using Values = test::Small_reader::Values;

std::u16string wide(std::string_view narrow) {
    std::u16string text;
    scl::scl_stow(narrow, text);
    return text;
}

std::u16string form_of(std::u16string_view text, const std::string& type) {
    std::u16string form;
    tla::tla_create_formatter(tla::tla_formatter_type_id_from_name(type))
        ->format(text, form, false);
    return form;
}

// A text in the form of a type, by the rules and with no thought of time.
class Model_text {
public:
    struct Place {
        std::size_t begin;
        std::size_t end;
    };

    Model_text(std::u16string_view text, const std::string& type)
        : is_number_(type == "CCNUMBER"), form_(form_of(text, is_number_ ? "Simple" : type)) {
        for (std::size_t size = 0; size <= text.size(); ++size) {
            sizes_.push_back(form_of(text.substr(0, size), is_number_ ? "Simple" : type).size());
        }
        const char16_t* const start = form_.data();
        txt::txt_walk_tokens(
            scl::scl_span_of(form_), [&](const char16_t* from, const char16_t* to) {
                const auto begin = static_cast<std::size_t>(from - start);
                if (from != to) tokens_.push_back({begin, static_cast<std::size_t>(to - start)});
            });
        for (std::size_t i = 0; i < tokens_.size(); ++i) {
            values_.push_back(test::Small_reader::token(token(i)));
        }
    }

    // Where the values stand first, in the original.
    [[nodiscard]] std::optional<Place> find(const Values& values) const {
        for (std::size_t first = 0; first < tokens_.size() && !values.empty(); ++first) {
            const auto length = is_number_ ? number_length(first, values) : several(first, values);
            if (length == 0) continue;
            return Place{original(tokens_[first].begin), original(tokens_[first + length - 1].end)};
        }
        return {};
    }

private:
    [[nodiscard]] std::u16string token(std::size_t i) const {
        return form_.substr(tokens_[i].begin, tokens_[i].end - tokens_[i].begin);
    }

    // How many tokens from one on are the values; 0 when they are not.
    [[nodiscard]] std::size_t several(std::size_t first, const Values& values) const {
        const bool fits = values.size() <= values_.size() - first;
        const auto from = values_.begin() + static_cast<std::ptrdiff_t>(first);
        return fits && std::equal(values.begin(), values.end(), from) ? values.size() : 0;
    }
    [[nodiscard]] std::size_t number_length(std::size_t first, const Values& values) const {
        for (std::size_t last = first; last < tokens_.size(); ++last) {
            const Values found = number(first, last);
            if (found == values) return last - first + 1;
            if (found.empty() && token(last) != u"-") break; // nothing longer is a number either
        }
        return 0;
    }

    // The value of tokens as one number; none when they do not make one.
    [[nodiscard]] Values number(std::size_t first, std::size_t last) const {
        std::u16string whole = form_of(token(first), "CCNUMBER");
        if (first == last && !whole.empty()) return {test::Small_reader::token(whole)};
        std::u16string digits;
        bool was_joined = true;
        for (std::size_t at = tokens_[first].begin; at < tokens_[last].end; ++at) {
            const bool joins = form_[at] == u' ' || form_[at] == u'-';
            if (joins ? was_joined : !scl::scl_is_decimal_digit(form_[at])) return {};
            if (!joins) digits += form_[at];
            was_joined = joins;
        }
        if (was_joined) return {};
        return {test::Small_reader::token(digits)};
    }

    [[nodiscard]] std::size_t original(std::size_t place) const {
        const auto after = std::ranges::upper_bound(sizes_, place);
        return static_cast<std::size_t>(after - sizes_.begin()) - 1;
    }

    bool is_number_;
    std::u16string form_;
    std::vector<Place> tokens_; // in the form
    Values values_;
    std::vector<std::size_t> sizes_; // of the form of what the text begins with
};

std::string shown(std::u16string_view text) {
    std::u16string line;
    for (const char16_t unit : text) {
        if (unit == 1) {
            line += u"\\x01";
        } else if (!scl::scl_is_white_space(unit)) {
            line += unit;
        } else if (!line.ends_with(u' ')) {
            line += u' ';
        }
    }
    std::string result;
    scl::scl_wtos(line, result, true);
    return result;
}

// What the program should say of the records of a file, one after the other.
class Model {
public:
    Model(const test::Small_reader& file, const std::string& text)
        : file_(file), text_(wide(text)) {
        for (const auto& field : file.fields()) {
            forms_.try_emplace(field.type, text_, field.type);
        }
    }

    [[nodiscard]] std::string lines(std::size_t least) const {
        std::multimap<std::size_t, std::string> lines; // equal places stay in their order
        for (const std::uint64_t record : file_.records()) {
            const Places places = places_of(record);
            const auto key = first_key(places);
            const auto count = std::ranges::count_if(places, [](const auto& p) { return !!p; });
            if (!key || static_cast<std::size_t>(count) < least) continue;
            lines.emplace(places[*key]->begin, line(*key, places, count, record));
        }
        std::string all;
        for (const auto& [place, line] : lines) {
            all += line;
        }
        return all;
    }

private:
    using Places = std::vector<std::optional<Model_text::Place>>; // of a record's fields

    [[nodiscard]] Places places_of(std::uint64_t record) const {
        Places places;
        for (const auto& field : file_.fields()) {
            places.push_back(forms_.at(field.type).find(file_.values(record, places.size())));
        }
        return places;
    }

    [[nodiscard]] std::optional<std::size_t> first_key(const Places& places) const {
        std::optional<std::size_t> first;
        for (const auto& table : file_.tables()) {
            const auto field = static_cast<std::size_t>(table.name.back() - '0');
            const bool is_first =
                places[field] && (!first || places[field]->begin < places[*first]->begin);
            if (is_first) first = field;
        }
        return first;
    }

    [[nodiscard]] std::string line(std::size_t key, const Places& places, std::ptrdiff_t count,
                                   std::uint64_t record) const {
        const auto [begin, end] = *places[key];
        const auto line = 1 + std::ranges::count(text_.substr(0, begin), u'\n');
        std::string names;
        for (std::size_t field = 0; field < places.size(); ++field) {
            if (places[field]) names += ' ' + file_.fields()[field].name;
        }
        return "text:" + std::to_string(line) + ": " + file_.fields()[key].name + " \"" +
               shown(text_.substr(begin, end - begin)) + "\", " + std::to_string(count) + " of " +
               std::to_string(places.size()) + " fields:" + names + " (record " +
               std::to_string(record) + ")\n";
    }

    const test::Small_reader& file_;
    std::u16string text_;
    std::map<std::string, Model_text> forms_; // by type
};

class Chance {
public:
    explicit Chance(unsigned seed) : random_(seed) {}
    std::size_t below(std::size_t limit) { return random_() % limit; }

    // Few different pieces, so that a text has much in common with records: cases, marks apart and
    // together, characters that grow, digits of several scripts, what joins and what does not.
    std::string piece() {
        static constexpr std::string_view PIECES[] = {
            "a",        "b",       "A",       "Σ",       "ς",       "É",
            "E\u0301",  "e\u0301", "İ",       "i\u0307", "J\u030C", "王",
            "か\u3099", "ｶﾞ",      "O'Brien", "1",       "2",       "12",
            "٣",        "９",      "1,2",     "-",       "-\u0301", "--",
            "'",        ".",       "\x01",    "\u0344",  "한",      "\u1112\u1161",
            "a a a",    "1 1 1"};
        return std::string(PIECES[below(std::size(PIECES))]);
    }
    std::string joint() {
        static constexpr std::string_view JOINTS[] = {"", " ", " ", "-", "-", "  ", "\u00A0"};
        return std::string(JOINTS[below(std::size(JOINTS))]);
    }
    std::string value(std::size_t most) {
        std::string text = piece();
        for (std::size_t left = below(most); left > 0; --left) {
            text += joint() + piece();
        }
        return text;
    }

private:
    std::mt19937 random_;
};

// Records of one to three fields, each line once.
struct Made {
    std::vector<std::string> arguments;
    std::string input;
};

Made make_set(Chance& chance) {
    static const std::string TYPES[] = {",Simple;", ",SimpleNC;", ",CCNUMBER;"};
    std::string schema;
    const std::size_t fields = 1 + chance.below(3);
    std::vector<std::string> keys;
    for (std::size_t field = 0; field < fields; ++field) {
        schema += "F" + std::to_string(field) + TYPES[chance.below(3)];
        if (field == 0 || chance.below(2) == 0) keys.push_back("F" + std::to_string(field));
    }
    std::ranges::reverse(keys);
    Made made{test::build_arguments(schema, keys), ""};
    const std::size_t records = chance.below(5) == 0 ? 300 : 1 + chance.below(30);
    for (std::size_t record = 0; record < records; ++record) {
        for (std::size_t field = 0; field < fields; ++field) {
            made.input += (field == 0 ? "" : "\t") + chance.value(4);
        }
        made.input += '\n';
    }
    return made;
}

std::string make_text(Chance& chance) {
    std::string text = chance.below(4) == 0 ? " " : "";
    for (std::size_t left = chance.below(40); left > 0; --left) {
        text += chance.value(6) + (chance.below(4) == 0   ? "\r\n"
                                   : chance.below(3) == 0 ? "\n"
                                                          : " ");
    }
    return text;
}

TEST(Scan, FindsWhatAModelFinds) {
    Chance chance(13);
    std::size_t found = 0;
    for (int round = 0; round < 200; ++round) {
        const test::Workplace place;
        const Made made = make_set(chance);
        place.write("in", made.input);
        const test::Outcome build = place.run(made.arguments);
        ASSERT_EQ(build.exit_status, 0) << build.err;
        if (!build.err.empty()) continue; // equal records were left out
        const test::Small_reader file(place.read("out"));
        const std::string text = make_text(chance);
        place.write("text", text);
        const std::size_t least = 1 + chance.below(file.fields().size());
        const test::Outcome scan = place.shell(SCAN + "-m" + std::to_string(least) + " out text");
        const std::string expected = Model(file, text).lines(least);
        ASSERT_EQ(scan.out, expected) << made.arguments[1] << '\n' << made.input << text;
        ASSERT_EQ(scan.err, "");
        ASSERT_EQ(scan.exit_status, expected.empty() ? 1 : 0);
        found += expected.empty() ? 0 : 1;
    }
    EXPECT_GT(found, 50U) << "the test has something to compare";
}

// A number of more digits than a stretch may have counts as a whole row of groups alone.
TEST(Scan, LimitsStretchesOfGroups) {
    const test::Workplace place;
    const std::string in_groups = "1111 2222-3333 4444 5555 6666 7777 8888 9999";
    std::string half = in_groups;
    std::erase_if(half, [](char c) { return c == ' ' || c == '-'; });
    place.write("in", half + half + "\n" + (half + half).substr(0, 64) + "\n");
    ASSERT_EQ(place.run(test::build_arguments("N,CCNUMBER", {"N"})).exit_status, 0);
    const std::string row = in_groups + ' ' + in_groups;
    const std::string short_line =
        "N \"" + row.substr(0, row.size() - 10) + "\", 1 of 1 fields: N (record 59)\n";
    place.write("text", "9 " + row);
    EXPECT_EQ(place.shell(SCAN + "out text").out, "text:1: " + short_line);
    place.write("text", "9  " + row);
    EXPECT_EQ(place.shell(SCAN + "out text").out,
              "text:1: N \"" + row + "\", 1 of 1 fields: N (record 48)\ntext:1: " + short_line);
}

} // namespace
