#include "piecewise_buffer.hpp"
#include "scl/scl_buffered_istream.hpp"
#include "scl/scl_checksum_buffer.hpp"
#include "scl/scl_heap_buffer.hpp"
#include "scl/scl_ostream.hpp"
#include "scl/scl_sub_buffer.hpp"
#include "scl/scl_unbuffered_istream.hpp"
#include "scl/scl_wstring_buffer.hpp"

#include <gtest/gtest.h>

#include <random>

namespace {

using scl::Scl_eol;
using scl::Scl_seek;

constexpr std::size_t WINDOW = scl::Scl_buffered_istream::WINDOW_BYTES;

std::span<const std::byte> bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text));
}

std::vector<std::byte> random_bytes(std::size_t size) {
    std::mt19937 random(7);
    std::vector<std::byte> bytes(size);
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(random());
    }
    return bytes;
}

class Stream : public testing::Test {
protected:
    void fill(std::span<const std::byte> bytes) { buffer.write_at(0, bytes, status); }
    // Whether this is the top code; clears the status.
    bool reported(scl::Scl_status_code code) {
        const bool found = status.value() == code;
        status.clear();
        return found;
    }

    scl::Scl_status status;
    scl::Scl_heap_buffer buffer;
};

TEST_F(Stream, NumbersComeBackInBothByteOrders) {
    scl::Scl_ostream out(buffer, status, Scl_eol::none);
    out.write_le(std::uint16_t{0x1234}, status);
    out.write_be(std::uint32_t{0x12345678}, status);
    out.write_le(std::int64_t{-2}, status);
    out.detach(status);
    EXPECT_TRUE(
        std::ranges::equal(buffer.contents().first(7), bytes_of("\x34\x12\x12\x34\x56\x78\xFE")));

    scl::Scl_buffered_istream in(buffer, false, status, Scl_eol::none);
    std::uint16_t small = 0;
    std::uint32_t middle = 0;
    std::int64_t negative = 0;
    in.read_le(small, status);
    EXPECT_EQ(small, 0x1234);
    in.read_be(middle, status);
    EXPECT_EQ(middle, 0x12345678U);
    in.read_le(negative, status);
    EXPECT_EQ(negative, -2);
    EXPECT_TRUE(status.ok());
}

TEST_F(Stream, AReadThatCannotBeFilledDeliversNothing) {
    fill(bytes_of("abc"));
    scl::Scl_buffered_istream in(buffer, false, status, Scl_eol::none);
    std::uint64_t value = 77;
    in.read_be(value, status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_END_OF_DATA));
    EXPECT_EQ(value, 77U);
    in.set_position(3);
    EXPECT_EQ(in.read_char(), 0);
    EXPECT_TRUE(reported(scl::SCL_STATUS_END_OF_DATA));
    in.set_position(4000);
    char byte = 0;
    EXPECT_EQ(in.read(1, &byte, status), 0U);
    EXPECT_TRUE(reported(scl::SCL_STATUS_END_OF_DATA)) << "wherever the position stands";
}

TEST_F(Stream, SeeksAreChecked) {
    fill(bytes_of("0123456789"));
    scl::Scl_buffered_istream in(buffer, true, status, Scl_eol::none);
    EXPECT_EQ(in.tell(), 10U);
    in.seek(Scl_seek::relative, -2, status);
    EXPECT_EQ(in.read_char(), '8');
    in.seek(Scl_seek::relative, 1, status);
    EXPECT_EQ(in.tell(), 10U) << "the end itself can be reached";
    EXPECT_TRUE(status.ok());
    in.seek(Scl_seek::relative, 1, status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_END_OF_DATA));
    in.seek(Scl_seek::relative, -11, status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
    in.seek(Scl_seek::relative, std::numeric_limits<std::int64_t>::max(), status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_END_OF_DATA));
    EXPECT_EQ(in.tell(), 10U);
}

// Random reads of all sizes around the window's edges, against the bytes themselves.
TEST_F(Stream, ReadingAheadGivesTheBytesThatAreThere) {
    const std::vector<std::byte> bytes = random_bytes(3 * WINDOW + 17);
    fill(bytes);
    const test::Piecewise_buffer file(buffer);
    scl::Scl_buffered_istream in(file, false, status, Scl_eol::none);
    std::mt19937 random(1);
    std::vector<std::byte> read(2 * WINDOW);
    for (int i = 0; i < 3000; ++i) {
        if (i % 3 == 0) in.set_position(random() % bytes.size());
        if (i % 100 == 0) in.limit_read_ahead(i % 200 == 0 ? WINDOW : 16);
        const std::uint64_t at = in.tell();
        const std::size_t wanted = random() % (i % 7 == 0 ? read.size() : 40);
        const std::size_t left = bytes.size() - at;
        const std::size_t count = in.read(wanted, read.data(), status);
        ASSERT_EQ(count, std::min(wanted, left));
        ASSERT_EQ(count < wanted, status == scl::SCL_STATUS_END_OF_DATA);
        ASSERT_TRUE(std::equal(read.begin(), read.begin() + static_cast<std::ptrdiff_t>(count),
                               bytes.begin() + static_cast<std::ptrdiff_t>(at)));
        status.clear();
        const auto window = in.window(50, status);
        ASSERT_GE(window.size(), std::min<std::size_t>(50, bytes.size() - in.tell()));
    }
}

TEST_F(Stream, AReadErrorIsNotTheEndOfTheData) {
    fill(random_bytes(2 * WINDOW));
    const test::Piecewise_buffer file(buffer, WINDOW);
    scl::Scl_buffered_istream in(file, false, status, Scl_eol::none);
    std::vector<std::byte> read(WINDOW + 1);
    EXPECT_EQ(in.read(WINDOW, read.data(), status), WINDOW);
    std::uint16_t value = 0;
    in.read_be(value, status);
    EXPECT_TRUE(status.contains_value(scl::SCL_STATUS_READ_FAILED));
    EXPECT_FALSE(status.contains_value(scl::SCL_STATUS_END_OF_DATA));
}

TEST_F(Stream, UnbufferedReadsLeaveThePositionAlone) {
    const scl::Scl_wstring_buffer text(u"ab");
    scl::Scl_unbuffered_istream in(text, false, status, Scl_eol::none);
    std::uint16_t unit = 0;
    EXPECT_EQ(in.read_at(2, 2, &unit, status), 2U);
    EXPECT_EQ(unit, u'b');
    EXPECT_EQ(in.read_at(4, 2, &unit, status), 0U);
    in.read_le(unit, status);
    EXPECT_EQ(unit, u'a') << "units lie in memory little-endian";
    EXPECT_TRUE(status.ok());
}

TEST_F(Stream, WritesGoBackAndOverButLeaveNoGap) {
    scl::Scl_ostream out(buffer, status, Scl_eol::none);
    const std::string large(200000, 'x');
    out.write("0123456789", status);
    out.write(large, status);
    out.set_position(4, status);
    out.write("--", status);
    out.detach(status);
    ASSERT_TRUE(status.ok());
    ASSERT_EQ(buffer.contents().size(), 200010U);
    EXPECT_TRUE(std::ranges::equal(buffer.contents().first(11), bytes_of("0123--6789x")));

    out.init(buffer, status, Scl_eol::none);
    out.set_position(200011, status);
    out.write("y", status);
    out.detach(status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
}

TEST_F(Stream, SubBuffersStayInsideTheirParent) {
    fill(bytes_of("0123456789"));
    const scl::Scl_sub_buffer middle(buffer, 2, 5, status);
    std::array<std::byte, 10> read{};
    EXPECT_EQ(middle.read_at(1, read, status), 2U);
    EXPECT_EQ(std::to_integer<char>(read[1]), '4');
    EXPECT_TRUE(std::ranges::equal(middle.contents(), bytes_of("234")));
    const scl::Scl_sub_buffer empty(buffer, 10, 10, status);
    EXPECT_EQ(empty.size(false, status), 0U);
    EXPECT_TRUE(status.ok());
    for (const auto& [begin, end] : {std::pair(3U, 2U), {0U, 11U}, {11U, 11U}}) {
        const scl::Scl_sub_buffer outside(buffer, begin, end, status);
        EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
        EXPECT_EQ(outside.size(false, status), 0U);
        status.clear();
    }
    EXPECT_EQ(middle.read_at(4, read, status), 0U);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
}

TEST_F(Stream, AChecksumTakenInPassingIsThatOfTheResult) {
    scl::Scl_checksum_buffer checked(buffer, 16);
    scl::Scl_ostream out(checked, status, Scl_eol::none);
    for (std::uint64_t i = 0; i < 30000; ++i) {
        out.write_le(i * i, status);
        if (i == 0) out.flush(status);
    }
    out.detach(status);
    scl::Scl_crc64 again;
    again.update(scl::Scl_sub_buffer(buffer, 16, buffer.contents().size(), status), status);
    EXPECT_EQ(checked.checksum().result(true), again.result(true));
    EXPECT_TRUE(status.ok());
}

} // namespace
