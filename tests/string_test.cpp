#include "scl/text/scl_case.hpp"
#include "scl/text/scl_string.hpp"
#include "scl/text/scl_text_span.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
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
}

TEST(String, IllFormedBytesBecomeUnitsOneByOne) {
    for (const char* const bytes :
         {"\x80", "\xFC", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80", "\xE2\x82", "\xF0\x90\x80"}) {
        std::u16string expected;
        for (const char byte : std::string_view(bytes)) {
            expected += static_cast<char16_t>(0xDC00 | static_cast<unsigned char>(byte));
        }
        EXPECT_EQ(wide_of(bytes), expected);
        EXPECT_EQ(wide_of(std::string("x") + bytes + "y"), u"x" + expected + u"y");
    }
    EXPECT_EQ(wide_of("\xE2\xC3\xA9"), (std::u16string{0xDCE2, 0xE9}));
}

TEST(String, BytesSurviveTheRoundTrip) {
    std::mt19937 random(20220913);
    for (int round = 0; round < 20000; ++round) {
        std::string bytes(random() % 40, '\0');
        // Mostly lead and continuation bytes, so that sequences of every kind come about.
        for (char& byte : bytes)
            byte = static_cast<char>(random() % 4 == 0 ? random() : 0x80 | (random() % 0x78));
        ASSERT_EQ(narrow_of(wide_of(bytes)), bytes);
        if (round % 100 != 0) continue;
        // The same in the middle of a long text, which is converted in pieces.
        const std::string before(8192 - random() % 40, 'x');
        const std::u16string expected = std::u16string(before.size(), u'x') + wide_of(bytes);
        ASSERT_EQ(wide_of(before + bytes), expected);
    }
}

TEST(String, UnitsSurviveTheRoundTrip) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const bool is_lost = (unit >= 0xD800 && unit < 0xDC80) || (unit > 0xDCFF && unit < 0xE000);
        const std::u16string text = {u'a', static_cast<char16_t>(unit), u'b'};
        ASSERT_EQ(wide_of(narrow_of(text)), is_lost ? u"a\uFFFDb" : text) << std::hex << unit;
    }
}

TEST(String, NonAsciiAtEveryPlaceOfABlock) {
    for (std::size_t size = 1; size < 40; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            const std::string narrow =
                std::string(at, 'x') + "\xC3\xA9" + std::string(size - at - 1, 'x');
            std::u16string wide(size, u'x');
            wide[at] = u'\u00E9';
            ASSERT_EQ(wide_of(narrow), wide);
            ASSERT_EQ(narrow_of(wide), narrow);
            std::string bytes = std::string(size, 'x') + std::string(scl::SCL_BLOCK_BYTES, '\xE9');
            ASSERT_TRUE(scl::scl_is_ascii({bytes.data(), bytes.data() + size})) << size;
            bytes[at] = '\x80';
            ASSERT_FALSE(scl::scl_is_ascii({bytes.data(), bytes.data() + size})) << size << at;
        }
    }
}

TEST(String, Trim) {
    const auto trim = [](std::u16string text) {
        const std::u16string view(scl::scl_trimmed(text));
        scl::scl_trim(text);
        EXPECT_EQ(view, text);
        return text;
    };
    EXPECT_EQ(trim(u""), u"");
    EXPECT_EQ(trim(u" \t\r\n\u0085\u00A0\u1680\u2028\u202F\u3000"), u"");
    EXPECT_EQ(trim(u"\u2003a b\u00A0c\x0B\x0C"), u"a b\u00A0c");
    // Look like blanks, are none.
    EXPECT_EQ(trim(u"\u200B\uFEFF\u180E"), u"\u200B\uFEFF\u180E");
}

TEST(String, ComparisonIgnoresCase) {
    EXPECT_GT(scl::scl_utf8_compare_nc("Simple ", "sIMPLE"), 0);
    EXPECT_LT(scl::scl_utf8_compare_nc("Simple", "SimpleNC"), 0);
    EXPECT_EQ(scl::scl_utf16_compare_nc(u"\u1E9E\u03C2", u"\u00DF\u03A3"), 0);
    EXPECT_NE(scl::scl_utf16_compare_nc(u"\u00DF", u"ss"), 0);
    EXPECT_GT(scl::scl_utf8_compare_nc("\xFF", "\xC3\xBF"), 0);
    using namespace std::string_view_literals;
    EXPECT_LT(scl::scl_utf8_compare_nc("a\0b"sv, "A\0C"sv), 0);
}

TEST(Block, TellsTheTopBitOfEachByte) {
    for (std::uint32_t bits = 0; bits < 0x10000; ++bits) {
        std::string text(scl::SCL_BLOCK_BYTES, '\x7F');
        for (std::size_t i = 0; i < text.size(); ++i) {
            if ((bits >> i & 1U) != 0) text[i] = '\x80';
        }
        ASSERT_EQ(scl::Scl_block(text.data()).top_bits(), bits);
    }
}

// Each unit that there is, in each lane of a block of others.
template <typename Unit>
void expect_comparisons() {
    constexpr std::size_t UNITS = scl::SCL_BLOCK_UNITS<Unit>;
    for (unsigned value = 0; value < 1U << (8 * sizeof(Unit)); ++value) {
        std::basic_string<Unit> text(UNITS, Unit{'q'});
        const auto unit = static_cast<Unit>(value);
        text[value % UNITS] = unit;
        const scl::Scl_block<Unit> block(text.data());
        const std::size_t before = value % UNITS;
        const bool is_between = value >= 'a' && value <= 'z';
        ASSERT_EQ(block.is_between('a', 'z').leading_lanes(), is_between ? UNITS : before) << value;
        ASSERT_EQ(block.equals('q').leading_lanes(), value == 'q' ? UNITS : before) << value;
    }
}

TEST(Block, ComparesLaneByLane) {
    expect_comparisons<char>();
    expect_comparisons<char16_t>();
}

TEST(Ascii, IsLoweredAndToldFromOtherBytesWithoutALookBehindTheText) {
    for (std::size_t size = 0; size < 40; ++size) {
        std::string text(size + scl::SCL_BLOCK_BYTES, '\x80');
        std::string lower(size + scl::SCL_BLOCK_BYTES, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            text[i] = static_cast<char>('>' + (i + size) % 64); // from before A to behind z
        }
        const scl::Scl_text_span<char> span{text.data(), text.data() + size};
        EXPECT_TRUE(scl::scl_is_ascii(span)) << size;
        scl::scl_lower_ascii(span, lower.data());
        for (std::size_t i = 0; i < size; ++i) {
            const bool is_capital = text[i] >= 'A' && text[i] <= 'Z';
            EXPECT_EQ(lower[i], is_capital ? text[i] + 32 : text[i]) << size << ' ' << i;
            const char kept = std::exchange(text[i], '\x80');
            EXPECT_FALSE(scl::scl_is_ascii(span)) << size << ' ' << i;
            text[i] = kept;
        }
    }
}

} // namespace
