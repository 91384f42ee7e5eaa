#include "cerc/cerc_utf16_reader.hpp"
#include "piecewise_buffer.hpp"
#include "scl/scl_sub_buffer.hpp"
#include "scl/scl_wstring_buffer.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr char32_t END = cerc::Cerc_reader_base::END_OF_DATA;
constexpr std::size_t WINDOW_UNITS = scl::Scl_buffered_istream::WINDOW_BYTES / 2;

// A reader over a text, as it stands in memory or as a file has it.
struct Reading {
    explicit Reading(std::u16string content, bool as_file = false, bool at_end = false)
        : text(std::move(content)), memory(text), file(memory) {
        reader.attach(as_file ? static_cast<const scl::Scl_buffer&>(file) : memory, status, at_end);
    }
    std::u32string rest() {
        std::u32string read;
        for (char32_t next = reader.read(); next != END; next = reader.read()) {
            read += next;
        }
        return read;
    }

    std::u16string text;
    scl::Scl_wstring_buffer memory;
    test::Piecewise_buffer file;
    scl::Scl_status status;
    cerc::Cerc_utf16_reader reader;
};

TEST(Utf16Reader, SurrogatesPairUpOrStandAlone) {
    Reading text({u'a', 0xD83D, 0xDE00, 0xDE00, 0xD83D, u'b', 0xD83D});
    const std::u32string expected{U'a', U'\U0001F600', 0xDE00, 0xD83D, U'b', 0xD83D};
    EXPECT_EQ(text.rest(), expected);
    EXPECT_EQ(text.reader.tell(), 14U);
    text.reader.seek(2, text.status);
    EXPECT_EQ(text.reader.read(), U'\U0001F600');
    EXPECT_EQ(text.reader.tell(), 6U);
    EXPECT_TRUE(text.status.ok());
}

TEST(Utf16Reader, OddLastByteIsNotRead) {
    Reading text(u"ab");
    const scl::Scl_sub_buffer odd(text.memory, 0, 3, text.status);
    text.reader.attach(odd, text.status, false);
    EXPECT_EQ(text.rest(), U"a");
    EXPECT_EQ(text.reader.tell(), 2U);
    EXPECT_TRUE(text.status.ok());
}

TEST(Utf16Reader, WindowsOfAFileJoinWithoutASeam) {
    // A pair across the first seam; then, one unit on, a lone lead at the second.
    const std::u16string text = std::u16string(WINDOW_UNITS - 1, u'x') + u"\U0001F600" +
                                std::u16string(WINDOW_UNITS, u'y') + char16_t{0xD83D} + u"z";
    Reading file(text, true);
    EXPECT_EQ(file.rest(), Reading(text).rest());
    file.reader.seek(2 * (WINDOW_UNITS - 1), file.status); // out of the window, back to the pair
    EXPECT_EQ(file.reader.read(), U'\U0001F600');
    EXPECT_EQ(file.reader.tell(), 2 * (WINDOW_UNITS + 1));
    file.reader.attach(file.memory, file.status, false);
    EXPECT_EQ(file.reader.read(), U'x');
    EXPECT_TRUE(file.status.ok());
}

TEST(Utf16Reader, StartsAtTheEndWhenAsked) {
    for (const bool as_file : {false, true}) {
        Reading text(u"ab", as_file, true);
        EXPECT_EQ(text.reader.tell(), 4U);
        EXPECT_EQ(text.reader.read(), END);
        text.reader.seek(2, text.status);
        EXPECT_EQ(text.reader.read(), U'b');
    }
}

TEST(Utf16Reader, SeekBeyondTheEndAndFailuresShowInTheStatus) {
    Reading text(u"ab", true);
    text.file.fails_from = 0;
    scl::Scl_status seeking;
    text.reader.seek(4, seeking);
    EXPECT_TRUE(seeking.ok());
    text.reader.seek(5, seeking);
    EXPECT_EQ(seeking.value(), scl::SCL_STATUS_END_OF_DATA);
    EXPECT_EQ(text.reader.tell(), 4U);
    text.reader.seek(0, seeking);
    EXPECT_EQ(text.reader.read(), END);
    EXPECT_EQ(text.status.value(), scl::SCL_STATUS_READ_FAILED);
}

} // namespace
