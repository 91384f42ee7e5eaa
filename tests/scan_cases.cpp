#include "scan_cases.hpp"

#include "data_set_files.hpp"

#include <array>

namespace test {

namespace {

template <std::size_t Size>
std::string one_of(const std::array<std::string_view, Size>& all, std::size_t at) {
    return std::string(all[at % Size]);
}

} // namespace

// Letters with case, marks apart and together, characters that grow or look at their neighbours,
// scripts without blanks, what joins words and what does not, bytes that are no UTF-8.
std::string Scan_case_maker::piece() {
    static constexpr auto PIECES = std::to_array<std::string_view>({"a",       "b",
                                                                    "A",       "B",
                                                                    "s",       "ann",
                                                                    "Ann",     "O",
                                                                    "O'B",     "O’B",
                                                                    "Σ",       "ς",
                                                                    "σ",       "É",
                                                                    "E\u0301", "e\u0301",
                                                                    "İ",       "i\u0307",
                                                                    "J\u030C", "王",
                                                                    "李",      "か\u3099",
                                                                    "ｶﾞ",      "\u0344",
                                                                    "한",      "\u1112\u1161",
                                                                    "1",       "2",
                                                                    "12",      "4111",
                                                                    "٣",       "９",
                                                                    "𝟙",       "😀",
                                                                    "1,2",     "1.a",
                                                                    "a.b",     "a_b",
                                                                    "-\u0301", "\x01",
                                                                    "a a a",   "\xFF",
                                                                    "\xC3",    "\xED\xA0\x80",
                                                                    "\u00AD",  "\u200B",
                                                                    "\u200C",  "\u2060",
                                                                    "\uFEFF",  "\u0301",
                                                                    "+",       "(",
                                                                    ")",       "/",
                                                                    "𐐀",       "ᾼ"});
    return one_of(PIECES, below(PIECES.size()));
}

std::string Scan_case_maker::joint() {
    static constexpr auto JOINTS = std::to_array<std::string_view>(
        {"",         "",       "",       " ",      " ",   " ",    " ",
         "-",        "-",      "  ",     "\u00A0", "\n",  "\r\n", "'",
         "’",        "`",      ".",      ",",      ":",   "_",    "\u2010",
         "\u2212",   "\u2003", "\u2028", "\t",     "'s ", "’s",   "\u0020\u0301",
         "         "});
    return one_of(JOINTS, below(JOINTS.size()));
}

std::string Scan_case_maker::value() {
    std::string text = piece();
    for (std::size_t left = below(4); left > 0; --left) {
        text += (below(3) == 0 ? " " : joint()) + piece();
    }
    return text;
}

std::string Scan_case_maker::number() {
    static constexpr auto PARTS =
        std::to_array<std::string_view>({"1", "2", "41", "11", "123", "1234567890123456", "DE", "x",
                                         "ab", "٣", "9", "+", "(", ")", "/", "A1", "b2"});
    static constexpr auto BETWEEN = std::to_array<std::string_view>({"", "", "-", " ", " "});
    std::string text = one_of(PARTS, below(PARTS.size()));
    for (std::size_t left = below(7); left > 0; --left) {
        text += one_of(BETWEEN, below(BETWEEN.size())) + one_of(PARTS, below(PARTS.size()));
    }
    return text;
}

std::string Scan_case_maker::value_of_type(std::string_view type) {
    if (below(12) == 0) return "";
    return type == "CCNUMBER" && below(3) != 0 ? number() : value();
}

// As somebody may write it: blanks, hyphens, apostrophes and letter case are others.
std::string Scan_case_maker::altered(const std::string& value) {
    static constexpr auto BLANKS = std::to_array<std::string_view>(
        {" ", "  ", "\n", "\u00A0", "-", "- ", " \n ", "\n\n", "_", "", "\u2011", "\u200B"});
    std::string text;
    for (const char c : value) {
        const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if ((c == ' ' || c == '-') && below(2) == 0) {
            text += one_of(BLANKS, below(BLANKS.size()));
        } else if (c == '\'' && below(2) == 0) {
            text += "’";
        } else if (is_letter && below(8) == 0) {
            text += static_cast<char>(c ^ 0x20);
        } else {
            text += c;
        }
        if (c >= '0' && c <= '9' && below(10) == 0) text += below(2) == 0 ? " " : "-";
    }
    return text;
}

std::string Scan_case_maker::text(const std::vector<std::vector<std::string>>& rows) {
    std::string text;
    for (std::size_t left = below(24); left > 0; --left) {
        const std::vector<std::string>& row = rows[below(rows.size())];
        if (below(3) == 0) {
            text += value();
        } else {
            for (std::size_t fields = 1 + below(3); fields > 0; --fields) {
                const std::string& field = row[below(row.size())];
                text += below(2) == 0 ? field : altered(field);
                text += below(3) == 0 ? joint() : " ";
            }
        }
        for (std::size_t words = below(4) == 0 ? below(12) : 0; words > 0; --words) {
            text += "z ";
        }
        text += below(4) == 0 ? "\n" : below(3) == 0 ? joint() : " ";
    }
    return text;
}

Scan_case Scan_case_maker::make() {
    static constexpr auto TYPES =
        std::to_array<std::string_view>({"Simple", "SimpleNC", "CCNUMBER"});
    std::string schema;
    std::vector<std::string_view> types;
    Keys keys;
    const std::size_t fields = 1 + below(4);
    for (std::size_t field = 0; field < fields; ++field) {
        types.push_back(TYPES[below(TYPES.size())]);
        const std::string name = "F" + std::to_string(field);
        schema += name + ',' + std::string(types.back()) + ';';
        if (field == 0 || below(2) == 0) keys.insert(keys.begin(), name);
    }
    Rows rows;
    const std::size_t records = below(3) == 0 ? 60 : 1 + below(12);
    // Of some fields all records have one of two values, so that many share them.
    std::vector<std::vector<std::string>> shared(fields);
    for (std::size_t field = 0; field < fields; ++field) {
        if (below(3) == 0)
            shared[field] = {value_of_type(types[field]), value_of_type(types[field])};
    }
    for (std::size_t record = 0; record < records; ++record) {
        const bool repeats = record > 0 && below(4) == 0;
        auto& row = rows.emplace_back();
        for (const std::string_view type : types) {
            const auto& pool = shared[row.size()];
            const bool is_same = repeats && below(4) != 0;
            row.push_back(is_same        ? rows[record - 1][row.size()]
                          : pool.empty() ? value_of_type(type)
                                         : pool[below(pool.size())]);
        }
    }
    Scan_case made{version2(schema, keys, rows), text(rows), {}, 1 + below(fields), {}, schema};
    if (below(3) == 0) {
        for (std::size_t names = 1 + below(2); names > 0; --names) {
            made.key_names.push_back(wide("F" + std::to_string(below(fields))));
        }
    }
    if (below(4) != 0) made.within = below(3) == 0 ? 100 : below(6);
    for (const auto& row : rows) {
        made.told += '\n';
        for (const std::string& field : row) {
            made.told += field + '\t';
        }
    }
    return made;
}

} // namespace test
