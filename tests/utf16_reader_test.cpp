#include "cerc/cerc_utf16_reader.hpp"
#include "piecewise_buffer.hpp"
#include "scl/scl_sub_buffer.hpp"
#include "scl/scl_wstring_buffer.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr char32_t END = cerc::Cerc_reader_base::END_OF_DATA;

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

TEST(Utf16Reader, SurrogatesPairUpAndAnOddLastByteIsNotRead) {
    Reading text({u'a', 0xD83D, 0xDE00, 0xDE00, 0xD83D, u'b', 0xD83D});
    const std::u32string expected{U'a', U'\U0001F600', 0xDE00, 0xD83D, U'b', 0xD83D};
    EXPECT_EQ(text.rest(), expected);
    EXPECT_EQ(text.reader.tell(), 14U);
    const scl::Scl_sub_buffer odd(text.memory, 0, 7, text.status);
    text.reader.attach(odd, text.status, false);
    EXPECT_EQ(text.rest(), U"a\U0001F600");
    EXPECT_EQ(text.reader.tell(), 6U);
    EXPECT_TRUE(text.status.ok());
}

TEST(Utf16Reader, StartsAtTheEndAndSeeksNoFurther) {
    for (const bool as_file : {false, true}) {
        Reading text(u"ab", as_file, true);
        EXPECT_EQ(text.reader.read(), END);
        text.reader.seek(5, text.status);
        EXPECT_EQ(text.status.value(), scl::SCL_STATUS_END_OF_DATA);
        EXPECT_EQ(text.reader.tell(), 4U);
        text.status.clear();
        text.reader.seek(2, text.status);
        EXPECT_EQ(text.reader.read(), U'b');
        EXPECT_TRUE(text.status.ok());
    }
    Reading failing(u"ab", true);
    failing.file.fails_from = 0;
    EXPECT_EQ(failing.reader.read(), END);
    EXPECT_EQ(failing.status.value(), scl::SCL_STATUS_READ_FAILED);
}

} // namespace
