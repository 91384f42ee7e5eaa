#include "cerc/cerc_utf16_reader.hpp"
#include "scl/scl_sub_buffer.hpp"
#include "token_support.hpp"

#include <gtest/gtest.h>

namespace {

constexpr char32_t END = cerc::Cerc_reader_base::END_OF_DATA;
constexpr std::size_t WINDOW_UNITS = scl::Scl_buffered_istream::WINDOW_BYTES / 2;

std::u32string rest_of(cerc::Cerc_utf16_reader& reader) {
    std::u32string read;
    for (char32_t next = reader.read(); next != END; next = reader.read()) {
        read += next;
    }
    return read;
}

TEST(Utf16Reader, SurrogatesPairUpOrStandAlone) {
    const std::u16string text{u'a', 0xD83D, 0xDE00, 0xDE00, 0xD83D, u'b', 0xD83D};
    const scl::Scl_wstring_buffer buffer(text);
    scl::Scl_status status;
    cerc::Cerc_utf16_reader reader;
    reader.attach(buffer, status, false);
    EXPECT_EQ(reader.read(), U'a');
    EXPECT_EQ(reader.read(), U'\U0001F600');
    EXPECT_EQ(reader.tell(), 6U);
    const std::u32string lone{0xDE00, 0xD83D, U'b', 0xD83D};
    EXPECT_EQ(rest_of(reader), lone);
    EXPECT_EQ(reader.tell(), 14U);
    reader.seek(2, status);
    EXPECT_EQ(reader.read(), U'\U0001F600');
    EXPECT_TRUE(status.ok());
}

TEST(Utf16Reader, OddLastByteIsNotRead) {
    const std::u16string text = u"ab";
    const scl::Scl_wstring_buffer whole(text);
    scl::Scl_status status;
    const scl::Scl_sub_buffer odd(whole, 0, 3, status);
    cerc::Cerc_utf16_reader reader;
    reader.attach(odd, status, false);
    EXPECT_EQ(rest_of(reader), U"a");
    EXPECT_EQ(reader.tell(), 2U);
    EXPECT_TRUE(status.ok());
}

TEST(Utf16Reader, WindowsOfAFileJoinWithoutASeam) {
    // A pair across the first seam; then, one unit on, a lone lead at the second.
    std::u16string text(WINDOW_UNITS - 1, u'x');
    text += u"\U0001F600";
    text += std::u16string(WINDOW_UNITS, u'y') + char16_t{0xD83D} + u"z";
    const test::Piecewise_buffer file(text);
    const scl::Scl_wstring_buffer memory(text);
    scl::Scl_status status;
    cerc::Cerc_utf16_reader from_file;
    from_file.attach(file, status, false);
    cerc::Cerc_utf16_reader from_memory;
    from_memory.attach(memory, status, false);
    EXPECT_EQ(rest_of(from_file), rest_of(from_memory));
    from_file.seek(2 * (WINDOW_UNITS - 1), status); // out of the window, back to the pair
    EXPECT_EQ(from_file.read(), U'\U0001F600');
    EXPECT_EQ(from_file.tell(), 2 * (WINDOW_UNITS + 1));
    from_file.attach(memory, status, false);
    EXPECT_EQ(from_file.read(), U'x');
    EXPECT_TRUE(status.ok());
}

TEST(Utf16Reader, StartsAtTheEndWhenAsked) {
    scl::Scl_status status;
    const std::u16string text = u"ab";
    const scl::Scl_wstring_buffer memory(text);
    const test::Piecewise_buffer file(text);
    for (const scl::Scl_buffer* buffer : {static_cast<const scl::Scl_buffer*>(&memory),
                                          static_cast<const scl::Scl_buffer*>(&file)}) {
        cerc::Cerc_utf16_reader reader;
        reader.attach(*buffer, status, true);
        EXPECT_EQ(reader.tell(), 4U);
        EXPECT_EQ(reader.read(), END);
        reader.seek(2, status);
        EXPECT_EQ(reader.read(), U'b');
    }
}

TEST(Utf16Reader, SeekBeyondTheEndAndFailuresShowInTheStatus) {
    const test::Piecewise_buffer file(u"ab", 0);
    scl::Scl_status reading;
    cerc::Cerc_utf16_reader reader;
    reader.attach(file, reading, false);
    scl::Scl_status seeking;
    reader.seek(4, seeking);
    EXPECT_TRUE(seeking.ok());
    reader.seek(5, seeking);
    EXPECT_EQ(seeking.value(), scl::SCL_STATUS_END_OF_DATA);
    EXPECT_EQ(reader.tell(), 4U);
    reader.seek(0, seeking);
    EXPECT_EQ(reader.read(), END);
    EXPECT_EQ(reading.value(), scl::SCL_STATUS_READ_FAILED);
}

} // namespace
