#include "scl/scl_buffered_istream.hpp"
#include "scl/scl_checksum_buffer.hpp"
#include "scl/scl_heap_buffer.hpp"
#include "scl/scl_ostream.hpp"
#include "scl/scl_sub_buffer.hpp"
#include "scl/scl_unbuffered_istream.hpp"
#include "scl/scl_wstring_buffer.hpp"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace {

using scl::Scl_eol;
using scl::Scl_seek;

constexpr std::size_t WINDOW = scl::Scl_buffered_istream::WINDOW_BYTES;

std::span<const std::byte> bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text));
}

// Hides that its bytes lie in memory, so that streams must read ahead as they do from a file.
class Distant_buffer final : public scl::Scl_buffer {
public:
    explicit Distant_buffer(std::size_t size) : bytes_(size) {
        std::mt19937 random(7);
        for (std::byte& byte : bytes_) {
            byte = static_cast<std::byte>(random());
        }
    }
    std::uint64_t size(bool in_units, scl::Scl_status& /*status*/) const override {
        return bytes_.size() / (in_units ? 2 : 1);
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> to,
                        scl::Scl_status& status) const override {
        if (fails_from_ <= offset) {
            status.push(scl::SCL_STATUS_READ_FAILED);
            return 0;
        }
        const std::size_t count = std::min<std::size_t>(to.size(), bytes_.size() - offset);
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), count, to.begin());
        return count;
    }
    void fail_from(std::uint64_t offset) { fails_from_ = offset; }
    const std::vector<std::byte>& bytes() const { return bytes_; }

private:
    std::vector<std::byte> bytes_;
    std::uint64_t fails_from_ = ~std::uint64_t{0};
};

TEST(Stream, NumbersComeBackInBothByteOrders) {
    scl::Scl_status status;
    scl::Scl_heap_buffer buffer;
    scl::Scl_ostream out(buffer, status, Scl_eol::none);
    out.write_le(std::uint16_t{0x1234}, status);
    out.write_be(std::uint16_t{0x1234}, status);
    out.write_le(std::uint32_t{0x12345678}, status);
    out.write_be(std::uint64_t{0x123456789ABCDEF0}, status);
    out.write_le(std::int64_t{-2}, status);
    out.detach(status);
    EXPECT_EQ(std::to_integer<int>(buffer.contents()[2]), 0x12) << "most significant byte first";

    scl::Scl_buffered_istream in(buffer, false, status, Scl_eol::none);
    std::uint16_t small = 0;
    std::uint32_t middle = 0;
    std::uint64_t large = 0;
    std::int64_t negative = 0;
    in.read_le(small, status);
    EXPECT_EQ(small, 0x1234);
    in.read_be(small, status);
    EXPECT_EQ(small, 0x1234);
    in.read_le(middle, status);
    EXPECT_EQ(middle, 0x12345678U);
    in.read_be(large, status);
    EXPECT_EQ(large, 0x123456789ABCDEF0U);
    in.read_le(negative, status);
    EXPECT_EQ(negative, -2);
    EXPECT_TRUE(status.ok());
}

TEST(Stream, AReadThatCannotBeFilledDeliversNothing) {
    scl::Scl_status status;
    scl::Scl_heap_buffer buffer;
    buffer.write_at(0, bytes_of("abc"), status);
    scl::Scl_buffered_istream in(buffer, false, status, Scl_eol::none);
    std::uint64_t value = 77;
    in.read_be(value, status);
    EXPECT_TRUE(status == scl::SCL_STATUS_END_OF_DATA);
    EXPECT_EQ(value, 77U);

    status.clear();
    in.set_position(3);
    EXPECT_EQ(in.read_char(), 0);
    EXPECT_TRUE(status == scl::SCL_STATUS_END_OF_DATA);

    status.clear();
    in.set_position(4000);
    char byte = 0;
    EXPECT_EQ(in.read(1, &byte, status), 0U);
    EXPECT_TRUE(status == scl::SCL_STATUS_END_OF_DATA) << "wherever the position stands";
}

TEST(Stream, SeeksAreChecked) {
    scl::Scl_status status;
    scl::Scl_heap_buffer buffer;
    buffer.write_at(0, bytes_of("0123456789"), status);
    scl::Scl_buffered_istream in(buffer, true, status, Scl_eol::none);
    EXPECT_EQ(in.tell(), 10U);
    in.seek(Scl_seek::relative, -2, status);
    EXPECT_EQ(in.read_char(), '8');
    in.seek(Scl_seek::relative, 1, status);
    EXPECT_EQ(in.tell(), 10U) << "the end itself can be reached";
    EXPECT_TRUE(status.ok());
    in.seek(Scl_seek::relative, 1, status);
    EXPECT_TRUE(status == scl::SCL_STATUS_END_OF_DATA);
    status.clear();
    in.seek(Scl_seek::relative, -11, status);
    EXPECT_TRUE(status == scl::SCL_STATUS_OUT_OF_BOUNDS);
    status.clear();
    in.seek(Scl_seek::relative, std::numeric_limits<std::int64_t>::max(), status);
    EXPECT_TRUE(status == scl::SCL_STATUS_END_OF_DATA);
    EXPECT_EQ(in.tell(), 10U);
}

// Random reads of all sizes around the window's edges, against the bytes themselves.
TEST(Stream, ReadingAheadGivesTheBytesThatAreThere) {
    const Distant_buffer buffer(3 * WINDOW + 17);
    scl::Scl_status status;
    scl::Scl_buffered_istream in(buffer, false, status, Scl_eol::none);
    std::mt19937 random(1);
    std::vector<std::byte> read(2 * WINDOW);
    for (int i = 0; i < 3000; ++i) {
        if (i % 3 == 0) in.set_position(random() % buffer.bytes().size());
        if (i % 100 == 0) in.limit_read_ahead(i % 200 == 0 ? WINDOW : 16);
        const std::uint64_t at = in.tell();
        const std::size_t wanted = random() % (i % 7 == 0 ? read.size() : 40);
        const std::size_t left = buffer.bytes().size() - at;
        const std::size_t count = in.read(wanted, read.data(), status);
        ASSERT_EQ(count, std::min(wanted, left));
        ASSERT_EQ(count < wanted, status == scl::SCL_STATUS_END_OF_DATA);
        ASSERT_TRUE(std::equal(read.begin(), read.begin() + static_cast<std::ptrdiff_t>(count),
                               buffer.bytes().begin() + static_cast<std::ptrdiff_t>(at)));
        status.clear();
        const auto window = in.window(50, status);
        ASSERT_GE(window.size(), std::min<std::size_t>(50, buffer.bytes().size() - in.tell()));
    }
}

TEST(Stream, AReadErrorIsNotTheEndOfTheData) {
    Distant_buffer buffer(2 * WINDOW);
    buffer.fail_from(WINDOW);
    scl::Scl_status status;
    scl::Scl_buffered_istream in(buffer, false, status, Scl_eol::none);
    std::vector<std::byte> read(WINDOW + 1);
    EXPECT_EQ(in.read(WINDOW, read.data(), status), WINDOW);
    std::uint16_t value = 0;
    in.read_be(value, status);
    EXPECT_TRUE(status == scl::SCL_STATUS_READ_FAILED);
    EXPECT_FALSE(status.contains_value(scl::SCL_STATUS_END_OF_DATA));
}

TEST(Stream, UnbufferedReadsLeaveThePositionAlone) {
    scl::Scl_status status;
    const scl::Scl_wstring_buffer buffer(u"ab");
    scl::Scl_unbuffered_istream in(buffer, false, status, Scl_eol::none);
    std::uint16_t unit = 0;
    EXPECT_EQ(in.read_at(2, 2, &unit, status), 2U);
    EXPECT_EQ(unit, u'b');
    EXPECT_EQ(in.read_at(4, 2, &unit, status), 0U);
    in.read_le(unit, status);
    EXPECT_EQ(unit, u'a') << "units lie in memory little-endian";
    EXPECT_TRUE(status.ok());
}

TEST(Stream, WritesGoBackAndOverButLeaveNoGap) {
    scl::Scl_status status;
    scl::Scl_heap_buffer buffer;
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
    EXPECT_TRUE(status == scl::SCL_STATUS_OUT_OF_BOUNDS);
}

TEST(Stream, SubBuffersStayInsideTheirParent) {
    scl::Scl_status status;
    scl::Scl_heap_buffer parent;
    parent.write_at(0, bytes_of("0123456789"), status);
    const scl::Scl_sub_buffer middle(parent, 2, 5, status);
    std::array<std::byte, 10> read{};
    EXPECT_EQ(middle.read_at(1, read, status), 2U);
    EXPECT_EQ(std::to_integer<char>(read[1]), '4');
    EXPECT_TRUE(std::ranges::equal(middle.contents(), bytes_of("234")));
    const scl::Scl_sub_buffer empty(parent, 10, 10, status);
    EXPECT_EQ(empty.size(false, status), 0U);
    EXPECT_TRUE(status.ok());
    for (const auto& [begin, end] : {std::pair(3U, 2U), {0U, 11U}, {11U, 11U}}) {
        const scl::Scl_sub_buffer outside(parent, begin, end, status);
        EXPECT_TRUE(status == scl::SCL_STATUS_OUT_OF_BOUNDS);
        EXPECT_EQ(outside.size(false, status), 0U);
        status.clear();
    }
    EXPECT_EQ(middle.read_at(4, read, status), 0U);
    EXPECT_TRUE(status == scl::SCL_STATUS_OUT_OF_BOUNDS);
}

TEST(Stream, AChecksumTakenInPassingIsThatOfTheResult) {
    scl::Scl_status status;
    scl::Scl_heap_buffer buffer;
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
