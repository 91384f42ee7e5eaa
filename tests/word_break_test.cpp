#include "scl/text/scl_unicode.hpp"
#include "token_support.hpp"

#include <fstream>
#include <random>
#include <sstream>

namespace {

using Wb = scl::Scl_word_break;
using Text = std::vector<char32_t>;

// The rules of the annex read literally, each asking the whole text; time does not matter.
class Slow_model {
public:
    explicit Slow_model(Text text) : text_(std::move(text)) {}

    // Whether a segment ends before position `at`, which is neither the start nor the end.
    [[nodiscard]] bool breaks(std::size_t at) const {
        const Wb left = wb(at - 1);
        const Wb right = wb(at);
        if (left == Wb::cr && right == Wb::lf) return false;               // WB3
        if (ends_line(left) || ends_line(right)) return true;              // WB3a, WB3b
        if (left == Wb::zwj && pictographic(right)) return false;          // WB3c
        if (left == Wb::wsegspace && right == Wb::wsegspace) return false; // WB3d
        if (skipped(right)) return false;                                  // WB4
        return breaks_between(before(at), at);
    }

private:
    static constexpr std::size_t NONE = ~std::size_t{0};

    [[nodiscard]] Wb wb(std::size_t at) const {
        if (at >= text_.size()) return Wb::other;
        return static_cast<Wb>(scl::scl_unicode_bits(text_[at]) >> 3U);
    }
    static bool ends_line(Wb p) { return p == Wb::cr || p == Wb::lf || p == Wb::newline; }
    static bool pictographic(Wb p) {
        return p == Wb::pictographic || p == Wb::aletter_pictographic;
    }
    static bool skipped(Wb p) { return p == Wb::extend || p == Wb::format || p == Wb::zwj; }
    static bool ahletter(Wb p) {
        return p == Wb::aletter || p == Wb::aletter_pictographic || p == Wb::hebrew_letter;
    }
    static bool mid_letter(Wb p) {
        return p == Wb::mid_letter || p == Wb::mid_num_let || p == Wb::single_quote;
    }
    static bool mid_num(Wb p) {
        return p == Wb::mid_num || p == Wb::mid_num_let || p == Wb::single_quote;
    }

    // The character that one at `at` has before it under WB4: not one that is skipped, unless it
    // starts the text or a line.
    [[nodiscard]] std::size_t before(std::size_t at) const {
        if (at == 0 || at == NONE) return NONE;
        std::size_t i = at - 1;
        while (skipped(wb(i)) && i > 0 && !ends_line(wb(i - 1))) {
            --i;
        }
        return i;
    }
    [[nodiscard]] std::size_t after(std::size_t at) const {
        std::size_t i = at + 1;
        while (i < text_.size() && skipped(wb(i))) {
            ++i;
        }
        return i;
    }
    [[nodiscard]] std::size_t indicators_up_to(std::size_t at) const {
        std::size_t count = 0;
        for (; at != NONE && wb(at) == Wb::regional_indicator; at = before(at)) {
            ++count;
        }
        return count;
    }

    [[nodiscard]] bool breaks_between(std::size_t left_at, std::size_t right_at) const {
        const std::size_t beyond_at = before(left_at);
        const Wb beyond = beyond_at == NONE ? Wb::other : wb(beyond_at);
        const Wb left = wb(left_at);
        const Wb right = wb(right_at);
        const Wb next = wb(after(right_at));
        const bool quote_next = right == Wb::double_quote && next == Wb::hebrew_letter;
        const bool quote_left = beyond == Wb::hebrew_letter && left == Wb::double_quote;
        const bool num = left == Wb::numeric;
        const bool to_num = right == Wb::numeric;
        const bool plain = ahletter(left) || num || left == Wb::katakana;
        const bool to_plain = ahletter(right) || to_num || right == Wb::katakana;
        if (ahletter(left) && ahletter(right)) return false;                       // WB5
        if (ahletter(left) && mid_letter(right) && ahletter(next)) return false;   // WB6
        if (ahletter(beyond) && mid_letter(left) && ahletter(right)) return false; // WB7
        if (left == Wb::hebrew_letter && right == Wb::single_quote) return false;  // WB7a
        if (left == Wb::hebrew_letter && quote_next) return false;                 // WB7b
        if (quote_left && right == Wb::hebrew_letter) return false;                // WB7c
        if (num && to_num) return false;                                           // WB8
        if (ahletter(left) && to_num) return false;                                // WB9
        if (num && ahletter(right)) return false;                                  // WB10
        if (beyond == Wb::numeric && mid_num(left) && to_num) return false;        // WB11
        if (num && mid_num(right) && next == Wb::numeric) return false;            // WB12
        if (left == Wb::katakana && right == Wb::katakana) return false;           // WB13
        if ((plain || left == Wb::extend_num_let) && right == Wb::extend_num_let) return false;
        if (left == Wb::extend_num_let && to_plain) return false;                       // WB13b
        if (right == Wb::regional_indicator) return indicators_up_to(left_at) % 2 == 0; // WB15, 16
        return true;                                                                    // WB999
    }

    Text text_;
};

std::uint32_t type_of(const Text& segment) {
    using Type = scl::Scl_unicode_code_point_type;
    Type type = Type::attached;
    for (std::size_t i = 0; i < segment.size() && type == Type::attached; ++i) {
        type = scl::scl_code_point_type(segment[i]);
    }
    return type == Type::letter        ? 0x1000002
           : type == Type::number      ? 0x1000003
           : type == Type::punctuation ? 0x1000004
                                       : 0x1000005;
}

std::vector<test::Piece> pieces_from(const std::vector<Text>& segments) {
    std::vector<test::Piece> pieces;
    std::uint64_t offset = 0;
    for (const Text& segment : segments) {
        const std::u16string text = test::utf16(segment);
        if (!scl::scl_is_white_space(segment.front())) {
            pieces.push_back({text, u"", type_of(segment), offset});
        } else {
            if (pieces.empty()) pieces.push_back({u"", u"", 0x1000001, offset});
            pieces.back().trailer += text;
        }
        offset += 2 * text.size();
    }
    return pieces;
}

std::vector<Text> segments_by_model(const Text& text) {
    const Slow_model model(text);
    std::vector<Text> segments;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (at == 0 || model.breaks(at)) segments.emplace_back();
        segments.back().push_back(text[at]);
    }
    return segments;
}

// A line of WordBreakTest.txt: hexadecimal code points with a mark for every position.
std::vector<Text> segments_of_line(const std::string& line) {
    std::istringstream words(line.substr(0, line.find('#')));
    std::vector<Text> segments;
    for (std::string word; words >> word;) {
        if (word == "\xC3\xB7") {
            segments.emplace_back();
        } else if (word != "\xC3\x97") {
            segments.back().push_back(static_cast<char32_t>(std::stoul(word, nullptr, 16)));
        }
    }
    if (!segments.empty()) segments.pop_back(); // opened by the mark at the end
    return segments;
}

// At least one code point of every word-break property, of the classes that meet in it, and lone
// surrogates.
const Text INTERESTING{
    U'a',      U'Z',      U'\u00E9',     U'\u24C2',     U'\u05D0',     U'\u30A2',     U'1',
    U'9',      U'_',      U'\u203F',     U':',          U'\u00B7',     U',',          U';',
    U'.',      U'\'',     U'"',          U'\u0308',     U'\u0903',     U'\u00AD',     U'\u200D',
    U' ',      U'\u3000', U'\u202F',     U'\u00A0',     U'\t',         U'\r',         U'\n',
    U'\u0085', U'\u2028', U'\U0001F1E6', U'\U0001F1FF', U'\u231A',     U'\U0001F600', U'\u0600',
    U'!',      U'\u203C', U'+',          U'\u4E00',     U'\U00010400', U'\U0001D7D0', U'\U000E0001',
    U'\0',     0xD800,    0xDC41};

TEST(Word_break, TestFileOfTheStandard) {
    std::ifstream file(DSMAKE_UNICODE_DATA "/auxiliary/WordBreakTest.txt");
    int lines = 0;
    for (std::string line; std::getline(file, line);) {
        const std::vector<Text> segments = segments_of_line(line);
        if (segments.empty() || line.find("202F") != std::string::npos) continue;
        Text text;
        for (const Text& segment : segments) {
            text.insert(text.end(), segment.begin(), segment.end());
        }
        ASSERT_EQ(test::pieces_of(test::utf16(text)), pieces_from(segments)) << line;
        ASSERT_EQ(segments_by_model(text), segments) << "model: " << line;
        ++lines;
    }
    EXPECT_GT(lines, 1700);
}

TEST(Word_break, RandomTextsAsTheSlowModel) {
    std::mt19937 random(4); // NOLINT: the same numbers each time
    for (int round = 0; round < 60000; ++round) {
        Text text(1 + random() % (round % 3 == 0 ? 30 : round % 3 == 1 ? 8 : 4));
        for (char32_t& code_point : text) {
            code_point = INTERESTING[random() % INTERESTING.size()];
            if (random() % 3 == 0) code_point = U'a' + random() % 2;
        }
        // A lead and a trail surrogate side by side would be another code point.
        for (std::size_t i = 1; i < text.size(); ++i) {
            if (text[i - 1] == 0xD800 && text[i] == 0xDC41) text[i] = U'a';
        }
        ASSERT_EQ(test::pieces_of(test::utf16(text)), pieces_from(segments_by_model(text)));
    }
}

} // namespace
