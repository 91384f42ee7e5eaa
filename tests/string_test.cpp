#include "scl/scl_compare.hpp"
#include "scl/scl_string.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

std::u16string wide_of(std::string_view narrow) {
    std::u16string wide = u"kept before";
    scl::scl_stow(narrow, wide);
    return wide;
}

std::string narrow_of(std::u16string_view wide) {
    std::string narrow = "kept before";
    scl::scl_wtos(wide, narrow, true);
    return narrow;
}

TEST(String, ConvertsWellFormedText) {
    const std::string narrow = "A\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"
                               "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF z";
    const std::u16string wide = u"A\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF z";
    EXPECT_EQ(wide_of(narrow), wide);
    EXPECT_EQ(narrow_of(wide), narrow);
    std::u16string appended = u"a";
    scl::scl_string_append(appended, narrow);
    EXPECT_EQ(appended, u"a" + wide);
    std::string bytes = "a";
    scl::scl_wtos(wide, bytes, false);
    EXPECT_EQ(bytes, "a" + narrow);
    scl::scl_utf16_to_utf8(wide, bytes);
    EXPECT_EQ(bytes, narrow);
}

TEST(String, IllFormedBytesBecomeUnitsOneByOne) {
    const auto bytes = [](std::initializer_list<int> values) {
        return std::string(values.begin(), values.end());
    };
    const auto units = [](std::initializer_list<char16_t> values) {
        return std::u16string(values);
    };
    EXPECT_EQ(wide_of("\x80"), units({0xDC80}));
    EXPECT_EQ(wide_of("M\xFCller"), units({u'M', 0xDCFC, u'l', u'l', u'e', u'r'}));
    EXPECT_EQ(wide_of(bytes({0xC0, 0x80})), units({0xDCC0, 0xDC80})); // overlong
    EXPECT_EQ(wide_of(bytes({0xC1, 0xBF})), units({0xDCC1, 0xDCBF}));
    EXPECT_EQ(wide_of(bytes({0xE0, 0x9F, 0xBF})), units({0xDCE0, 0xDC9F, 0xDCBF}));
    EXPECT_EQ(wide_of(bytes({0xED, 0xA0, 0x80})), units({0xDCED, 0xDCA0, 0xDC80})); // surrogate
    EXPECT_EQ(wide_of(bytes({0xF0, 0x8F, 0xBF, 0xBF})), units({0xDCF0, 0xDC8F, 0xDCBF, 0xDCBF}));
    EXPECT_EQ(wide_of(bytes({0xF4, 0x90, 0x80, 0x80})), units({0xDCF4, 0xDC90, 0xDC80, 0xDC80}));
    EXPECT_EQ(wide_of(bytes({0xF5, 0x80})), units({0xDCF5, 0xDC80}));
    EXPECT_EQ(wide_of(bytes({0xE2, 0x82})), units({0xDCE2, 0xDC82})); // cut short
    EXPECT_EQ(wide_of(bytes({0xE2, 0x82, 'x'})), units({0xDCE2, 0xDC82, u'x'}));
    EXPECT_EQ(wide_of(bytes({0xE2, 0xC3, 0xA9})), units({0xDCE2, 0xE9}));
}

TEST(String, BytesSurviveTheRoundTrip) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const std::string pair = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(narrow_of(wide_of(pair)), pair) << first << ' ' << second;
        }
    }
    std::mt19937 random(20220913);
    for (int round = 0; round < 20000; ++round) {
        std::string bytes(random() % 40, '\0');
        // Mostly lead and continuation bytes, so that sequences of every kind come about.
        for (char& byte : bytes)
            byte = static_cast<char>(random() % 4 == 0 ? random() : 0x80 | (random() % 0x78));
        ASSERT_EQ(narrow_of(wide_of(bytes)), bytes);
    }
}

TEST(String, UnitsSurviveTheRoundTrip) {
    for (unsigned value = 0; value < 0x10000; ++value) {
        const auto unit = static_cast<char16_t>(value);
        const bool is_byte = value >= 0xDC80 && value <= 0xDCFF;
        const bool is_lost = value >= 0xD800 && value <= 0xDFFF && !is_byte;
        const std::u16string text = {u'a', unit, u'b'};
        const std::u16string expected = {u'a', is_lost ? char16_t{0xFFFD} : unit, u'b'};
        ASSERT_EQ(wide_of(narrow_of(text)), expected) << std::hex << value;
    }
    EXPECT_EQ(narrow_of(std::u16string{0xD83D, 0xDCA9}), "\xF0\x9F\x92\xA9"); // a pair, no byte
    EXPECT_EQ(narrow_of(std::u16string{0xD83D}), "\xEF\xBF\xBD");
}

TEST(String, NonAsciiAtEveryPlaceOfABlock) {
    for (std::size_t size = 0; size < 40; ++size) {
        const std::string ascii(size, 'x');
        ASSERT_EQ(wide_of(ascii), std::u16string(size, u'x'));
        for (std::size_t at = 0; at < size; ++at) {
            std::string narrow = ascii;
            narrow.replace(at, 1, "\xC3\xA9");
            std::u16string wide(size, u'x');
            wide[at] = u'\u00E9';
            ASSERT_EQ(wide_of(narrow), wide);
            ASSERT_EQ(narrow_of(wide), narrow);
        }
    }
}

TEST(String, Trim) {
    const auto trim = [](std::u16string text) {
        EXPECT_EQ(scl::scl_trimmed(text), [&] {
            std::u16string copy = text;
            scl::scl_trim(copy);
            return copy;
        }());
        scl::scl_trim(text);
        return text;
    };
    EXPECT_EQ(trim(u""), u"");
    EXPECT_EQ(trim(u" \t\r\n\u0085\u00A0\u1680\u2028\u202F\u3000"), u"");
    EXPECT_EQ(trim(u"\u2003a b\u00A0c\x0B\x0C"), u"a b\u00A0c");
    // Look like blanks, are none.
    EXPECT_EQ(trim(u"\u200B\uFEFF\u180E"), u"\u200B\uFEFF\u180E");
}

TEST(String, CodePointsOneByOne) {
    const std::u16string text = {u'a', 0xD83D, 0xDE00, 0xDE00, 0xD83D};
    std::size_t index = 0;
    EXPECT_EQ(scl::scl_utf16_to_utf32_char(text, index), U'a');
    EXPECT_EQ(scl::scl_utf16_to_utf32_char(text, index), U'\U0001F600');
    EXPECT_EQ(index, 3U);
    EXPECT_EQ(scl::scl_utf16_to_utf32_char(text, index), 0xDE00U);
    EXPECT_EQ(scl::scl_utf16_to_utf32_char(text, index), 0xD83DU);
    EXPECT_EQ(index, 5U);
    EXPECT_EQ(scl::scl_utf16_to_utf32_char(text, index), 0U);
    EXPECT_EQ(index, scl::SCL_NPOS);
    EXPECT_EQ(scl::scl_utf16_to_utf32_char(text, index), 0U);
    EXPECT_EQ(index, scl::SCL_NPOS);
}

TEST(String, ComparisonIgnoresCase) {
    EXPECT_EQ(scl::scl_utf8_compare_nc("sImPlE", "Simple"), 0);
    EXPECT_GT(scl::scl_utf8_compare_nc("Simple ", "Simple"), 0);
    EXPECT_LT(scl::scl_utf8_compare_nc("Simple", "SimpleNC"), 0);
    EXPECT_EQ(scl::scl_utf16_compare_nc(u"\u1E9E\u03C2", u"\u00DF\u03A3"), 0);
    EXPECT_NE(scl::scl_utf16_compare_nc(u"\u00DF", u"ss"), 0);
    // By code point, not by unit or byte: a supplementary one comes after U+FF41.
    EXPECT_LT(scl::scl_utf16_compare_nc(u"\uFF21", u"\U00010400"), 0);
    EXPECT_GT(scl::scl_utf8_compare_nc("\xFF", "\xC3\xBF"), 0);
    using namespace std::string_view_literals;
    EXPECT_LT(scl::scl_utf8_compare_nc("a\0b"sv, "A\0C"sv), 0);
}

} // namespace
