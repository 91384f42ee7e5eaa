#include "piecewise_buffer.hpp"
#include "scl/scl_buffered_istream.hpp"
#include "scl/scl_heap_buffer.hpp"
#include "scl/scl_ostream.hpp"
#include "scl/scl_sub_buffer.hpp"

#include <gtest/gtest.h>

#include <random>

namespace {

using scl::Scl_eol;
using scl::Scl_seek;

constexpr std::size_t WINDOW = scl::Scl_buffered_istream::WINDOW_BYTES;

std::span<const std::byte> bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text));
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
    std::mt19937 random(1);
    std::vector<std::byte> bytes(3 * WINDOW + 17);
    std::ranges::generate(bytes, [&random] { return static_cast<std::byte>(random()); });
    fill(bytes);
    const test::Piecewise_buffer file(buffer);
    scl::Scl_buffered_istream in(file, false, status, Scl_eol::none);
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
    fill(std::vector<std::byte>(2 * WINDOW));
    const test::Piecewise_buffer file(buffer, WINDOW);
    scl::Scl_buffered_istream in(file, false, status, Scl_eol::none);
    std::vector<std::byte> read(WINDOW + 1);
    EXPECT_EQ(in.read(WINDOW, read.data(), status), WINDOW);
    std::uint16_t value = 0;
    in.read_be(value, status);
    EXPECT_TRUE(status.contains_value(scl::SCL_STATUS_READ_FAILED));
    EXPECT_FALSE(status.contains_value(scl::SCL_STATUS_END_OF_DATA));
}

TEST_F(Stream, WritesGoBackAndOverButLeaveNoGap) {
    scl::Scl_ostream out(buffer, status, Scl_eol::none);
    const std::string large(200000, 'x');
    out.write("0123456789" + large, status);
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
    EXPECT_TRUE(std::ranges::equal(middle.contents(), bytes_of("234")));
    EXPECT_EQ(scl::Scl_sub_buffer(buffer, 10, 10, status).size(false, status), 0U);
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

} // namespace
