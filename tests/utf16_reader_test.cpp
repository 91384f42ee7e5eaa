#include "cerc/cerc_utf16_reader.hpp"
#include "piecewise_buffer.hpp"
#include "scl/io/scl_buffers.hpp"

#include <gtest/gtest.h>

namespace {

constexpr char32_t END = cerc::Cerc_reader_base::END_OF_DATA;

std::u32string rest_of(cerc::Cerc_utf16_reader& reader) {
    std::u32string read;
    for (char32_t next = reader.read(); next != END; next = reader.read()) {
        read += next;
    }
    return read;
}

TEST(Utf16_reader, SurrogatesPairUpAndAnOddLastByteIsNotRead) {
    const std::u16string text{u'a', 0xD83D, 0xDE00, 0xDE00, 0xD83D, u'b', 0xD83D};
    const std::u32string expected{U'a', U'\U0001F600', 0xDE00, 0xD83D, U'b', 0xD83D};
    const scl::Scl_wstring_buffer content(text);
    scl::Scl_status status;
    cerc::Cerc_utf16_reader reader;
    reader.attach(content, status, false);
    EXPECT_EQ(rest_of(reader), expected);
    EXPECT_EQ(reader.tell(), 14U);
    const scl::Scl_sub_buffer odd(content, 0, 7, status);
    reader.attach(odd, status, false);
    EXPECT_EQ(rest_of(reader), expected.substr(0, 2));
    EXPECT_EQ(reader.tell(), 6U);
    EXPECT_TRUE(status.ok());
}

TEST(Utf16_reader, ReadsToTheEndAndSeeksNoFurther) {
    const scl::Scl_wstring_buffer memory(u"ab");
    test::Piecewise_buffer file(memory);
    scl::Scl_status status;
    cerc::Cerc_utf16_reader reader;
    for (const scl::Scl_buffer* content : {static_cast<const scl::Scl_buffer*>(&memory),
                                           static_cast<const scl::Scl_buffer*>(&file)}) {
        reader.attach(*content, status, false);
        EXPECT_EQ(rest_of(reader), U"ab");
        reader.seek(5, status);
        EXPECT_EQ(status.value(), scl::SCL_STATUS_END_OF_DATA);
        EXPECT_EQ(reader.tell(), 4U);
        status.clear();
        reader.seek(2, status);
        EXPECT_EQ(rest_of(reader), U"b");
        EXPECT_TRUE(status.ok());
    }
    file.fails_from = 0;
    reader.attach(file, status, false);
    EXPECT_EQ(reader.read(), END);
    EXPECT_EQ(status.value(), scl::SCL_STATUS_READ_FAILED);
    reader.attach(memory, status, false);
    file.contents_fault = [] { throw std::bad_alloc(); };
    EXPECT_THROW(reader.attach(file, status, false), std::bad_alloc);
    EXPECT_EQ(reader.read(), END) << "nothing of what was read before";
}

} // namespace
