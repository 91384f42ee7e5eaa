#include "scl/status/scl_status.hpp"
#include "scl/text/scl_case.hpp"
#include "scl/text/scl_normalize.hpp"
#include "scl/text/scl_string.hpp"
#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr char32_t LIMIT = 0x110000;

using Row = std::vector<std::string>;

// The rows of a data file: its fields, between semicolons, comments left out.
void for_each_row(const std::string& path, const std::function<void(const Row&)>& use) {
    std::ifstream file(path);
    ASSERT_TRUE(file) << path;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line.substr(0, line.find('#')));
        Row row;
        for (std::string field; std::getline(fields >> std::ws, field, ';');)
            row.push_back(field.substr(0, field.find_last_not_of(' ') + 1));
        if (row.size() > 1) use(row);
    }
}

char32_t code_point_of(const std::string& text) {
    return static_cast<char32_t>(std::stoul(text, nullptr, 16));
}

std::u16string units_of(char32_t code_point) {
    char16_t units[2] = {};
    return {units, scl::scl_utf16_put(units, code_point)};
}

// The text of code points in hexadecimal digits, separated by blanks.
std::u16string text_of(const std::string& code_points) {
    std::istringstream parts(code_points);
    std::u16string text;
    for (std::string part; parts >> part;)
        text += units_of(code_point_of(part));
    return text;
}

// The value that a file of ranges gives each code point; of a file of several properties, `only`
// the one asked for.
std::vector<std::string> values_of(const std::string& file, const std::string& otherwise,
                                   const std::string& only = "") {
    std::vector<std::string> values(LIMIT, otherwise);
    for_each_row(DSMAKE_UNICODE_DATA "/" + file, [&](const Row& row) {
        if (!only.empty() && row[1] != only) return;
        const auto dots = row[0].find("..");
        const auto last = dots == std::string::npos ? row[0] : row[0].substr(dots + 2);
        for (char32_t c = code_point_of(row[0]); c <= code_point_of(last); ++c)
            values[c] = row[1];
    });
    return values;
}

// Calls `holds` with every code point.
void expect_of_all(const std::function<bool(char32_t)>& holds) {
    for (char32_t c = 0; c < LIMIT; ++c)
        ASSERT_TRUE(holds(c)) << std::hex << std::uint32_t{c};
}

// Both ways, where both are open.
std::u16string lower(std::u16string text) {
    std::u16string normal = text;
    scl::scl_lower(text);
    if (scl::scl_can_normalize(normal) && scl::scl_is_normalized(normal)) {
        scl::scl_lower_normalized(normal);
        EXPECT_EQ(normal, text);
    }
    return text;
}

std::u16string nfc(std::u16string_view text) {
    std::u16string out;
    scl::Scl_status status;
    scl::scl_normalize(text, out, status);
    EXPECT_TRUE(status.ok());
    return out;
}

std::string utf8(std::u16string_view text) {
    std::string narrow;
    scl::scl_utf16_to_utf8(text, narrow);
    return narrow;
}

TEST(Unicode_tables, ClassesFollowCategoryAndWhiteSpace) {
    using Type = scl::Scl_unicode_code_point_type;
    const std::map<char, Type> types = {
        {'L', Type::letter},   {'N', Type::number}, {'P', Type::punctuation}, {'S', Type::symbol},
        {'M', Type::attached}, {'Z', Type::other},  {'C', Type::other}};
    const auto categories = values_of("extracted/DerivedGeneralCategory.txt", "Cn");
    const auto white_space = values_of("PropList.txt", "", "White_Space");
    expect_of_all([&](char32_t c) {
        const bool is_white = !white_space[c].empty();
        const Type expected = is_white                ? Type::white_space
                              : categories[c] == "Cf" ? Type::attached
                                                      : types.at(categories[c][0]);
        return scl::scl_code_point_type(c) == expected && scl::scl_is_white_space(c) == is_white &&
               scl::scl_is_decimal_digit(c) == (categories[c] == "Nd") &&
               scl::impl::scl_get_icu_char_type(c) == expected;
    });
    EXPECT_EQ(scl::scl_code_point_type(LIMIT), Type::other);
    EXPECT_EQ(scl::scl_code_point_type(0xFFFFFFFF), Type::other);
}

TEST(Unicode_tables, WordBreaksFollowTheAnnexButForOneBlank) {
    using Break = scl::Scl_word_break;
    std::map<std::string, Break> values_by_name;
    std::istringstream names("Other ALetter Hebrew_Letter Katakana Numeric ExtendNumLet MidLetter "
                             "MidNum MidNumLet Single_Quote Double_Quote Extend Format ZWJ "
                             "WSegSpace CR LF Newline Regional_Indicator"); // as enumerated
    for (std::string name; names >> name;)
        values_by_name.emplace(name, static_cast<Break>(values_by_name.size()));
    auto values = values_of("auxiliary/WordBreakProperty.txt", "Other");
    const auto pictographic = values_of("emoji/emoji-data.txt", "", "Extended_Pictographic");
    values[0x202F] = "WSegSpace";
    expect_of_all([&](char32_t c) {
        const Break plain = values_by_name.at(values[c]);
        const auto found = static_cast<Break>(scl::scl_unicode_bits(c) >> 3U);
        if (pictographic[c].empty()) return found == plain;
        return found ==
               (plain == Break::aletter ? Break::aletter_pictographic : Break::pictographic);
    });
}

TEST(Case, LowerMapsEveryCodePoint) {
    std::vector<std::u16string> mapped(LIMIT);
    for_each_row(DSMAKE_UNICODE_DATA "/UnicodeData.txt", [&](const Row& row) {
        if (row[13] != "") mapped[code_point_of(row[0])] = text_of(row[13]);
    });
    for_each_row(DSMAKE_UNICODE_DATA "/SpecialCasing.txt", [&](const Row& row) {
        if (row.size() == 4) mapped[code_point_of(row[0])] = text_of(row[1]);
    });
    expect_of_all([&](char32_t c) {
        const std::u16string text = units_of(c);
        // With a letter behind it, so that a sigma is not final and nothing goes the ASCII way.
        return lower(text + u'\u00E9') == (mapped[c].empty() ? text : mapped[c]) + u'\u00E9';
    });
}

TEST(Case, ComparisonFoldsEveryCodePoint) {
    std::vector<char32_t> folded(LIMIT);
    for (char32_t c = 0; c < LIMIT; ++c)
        folded[c] = c;
    for_each_row(DSMAKE_UNICODE_DATA "/CaseFolding.txt", [&](const Row& row) {
        if (row[1] == "C" || row[1] == "S") folded[code_point_of(row[0])] = code_point_of(row[2]);
    });
    expect_of_all([&](char32_t c) {
        const std::u16string a = units_of(c);
        const std::u16string b = units_of(folded[c]);
        // What folds to itself differs from its neighbour's folding unless that is the same one.
        const char32_t next = (c + 1) % LIMIT;
        const int order = folded[c] < folded[next] ? -1 : folded[c] > folded[next] ? 1 : 0;
        return scl::scl_utf16_compare_nc(a, b) == 0 &&
               scl::scl_utf8_compare_nc(utf8(a), utf8(b)) == 0 &&
               scl::scl_utf16_compare_nc(a, units_of(next)) == order;
    });
}

TEST(Normalization, Conforms) {
    std::set<char32_t> listed; // the single code points of part 1
    std::size_t cases = 0;
    for_each_row(DSMAKE_NORMALIZATION_TEST, [&](const Row& row) {
        std::u16string c[5];
        for (std::size_t i = 0; i < 5; ++i)
            c[i] = text_of(row[i]);
        for (std::size_t i = 0; i < 5; ++i) {
            const std::u16string& expected = c[i < 3 ? 1 : 3];
            EXPECT_EQ(nfc(c[i]), expected) << row[0] << " column " << i + 1;
            EXPECT_EQ(scl::scl_is_normalized(c[i]), c[i] == expected) << row[0];
            EXPECT_TRUE(c[i] == expected || !scl::scl_is_plain(c[i])) << row[0];
        }
        if (row[0].find(' ') == std::string::npos) listed.insert(code_point_of(row[0]));
        ++cases;
    });
    EXPECT_GT(cases, 18000U);
    expect_of_all(
        [&](char32_t c) { return listed.contains(c) || nfc(units_of(c)) == units_of(c); });
}

TEST(Normalization, WorksBesideLoneSurrogatesAndInPlace) {
    const std::u16string lone = {u'e', 0x301, 0xD800, u'e', 0x301, 0xDC00};
    const std::u16string lone_normal = {0xE9, 0xD800, 0xE9, 0xDC00};
    EXPECT_EQ(nfc(lone), lone_normal);
    std::u16string own = u"--e\u0301--";
    scl::scl_normalize(std::u16string_view(own).substr(2), own);
    EXPECT_EQ(own, u"\u00E9--");
    scl::scl_normalize(std::u16string_view(own).substr(1), own);
    EXPECT_EQ(own, u"--");
}

TEST(Normalization, LongRunsOfMarksStayLinear) {
    constexpr std::size_t COUNT = 300000;
    std::u16string text = u"a\u0323";
    std::u16string above;
    std::u16string sigmas;
    for (std::size_t i = 0; i < COUNT; ++i) {
        text += u"\u0303\u0323\u0301";
        above += u"\u0303\u0301";
        sigmas += i % 300 == 0 ? u"\u03A3.." : u"...";
    }
    EXPECT_TRUE(nfc(text) == u"\u1EA1" + std::u16string(COUNT, u'\u0323') + above);
    const std::u16string small = lower(sigmas);
    EXPECT_EQ(small.find(u'\u03C2'), (COUNT - 300) * 3) << "only the last one is final";
}

TEST(Normalization, TakesWhatIsWellFormed) {
    EXPECT_TRUE(scl::scl_can_normalize(u"a\U00010400\U0010FFFF\uE000\uD7FF"));
    for (const std::u16string& lone : std::vector<std::u16string>{
             {0xD800}, {0xDC00, 0xD800}, {0xD83D, u'b', 0xDE00}, {0xD83D, 0xD83D, 0xDE00}})
        EXPECT_FALSE(scl::scl_can_normalize(u"0123456789" + lone));
}

TEST(Case, FinalSigma) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"\u039F\u0394\u039F\u03A3", u"\u03BF\u03B4\u03BF\u03C2"},
        {u"\u03A3", u"\u03C3"},         // nothing before it
        {u"A\u03A3B", u"a\u03C3b"},     // cased after it
        {u"A\u03A3 B", u"a\u03C2 b"},   // a blank ends the word
        {u"A.\u03A3.B", u"a.\u03C3.b"}, // case-ignorable on both sides
        {u"A.\u03A3.", u"a.\u03C2."},
        {u"1\u03A3", u"1\u03C3"},
        {u"A\u03A3\u03A3", u"a\u03C3\u03C2"},
        {u"\u02B0\u03A3", u"\u02B0\u03C3"}, // cased and case-ignorable: skipped
        {u"A\u03A3\u02B0", u"a\u03C2\u02B0"},
        {u"A\u03A3\U00010400", u"a\u03C3\U00010428"}};
    for (const auto& [text, small] : cases)
        EXPECT_EQ(lower(text), small);
}

TEST(Case, LowerKeepsNormalFormAndOnlyThat) {
    EXPECT_EQ(lower(u"@AZ[`az{"), u"@az[`az{");
    EXPECT_EQ(lower(u"\u0130X\u0130"), u"i\u0307xi\u0307");
    // Not in the form before: only mapped.
    EXPECT_EQ(lower(u"E\u0301J\u030C"), u"e\u0301j\u030C");
    EXPECT_EQ(lower({u'J', 0x30C, 0xD800}), (std::u16string{u'j', 0x30C, 0xD800}));
    EXPECT_EQ(lower(u"J\u030C"), u"\u01F0");
    for_each_row(DSMAKE_UNICODE_DATA "/UnicodeData.txt", [&](const Row& row) {
        if (row[2] != "Lu" && row[2] != "Lt") return;
        for (char32_t mark = 0x300; mark < 0x370; ++mark) {
            const std::u16string text = units_of(code_point_of(row[0])) + units_of(mark);
            ASSERT_TRUE(!scl::scl_is_normalized(text) || scl::scl_is_normalized(lower(text)));
        }
    });
}

} // namespace
