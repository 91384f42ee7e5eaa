#include "piecewise_buffer.hpp"
#include "program.hpp"
#include "scl/io/scl_buffered_istream.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/io/scl_file_buffer.hpp"
#include "scl/io/scl_ostream.hpp"
#include "scl/text/scl_string.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using scl::Scl_eol;
using scl::Scl_seek;

constexpr std::size_t WINDOW = scl::Scl_buffered_istream::WINDOW_BYTES;

class Stream : public testing::Test {
protected:
    void fill(std::string_view bytes) {
        buffer.write_at(0, std::as_bytes(std::span(bytes)), status);
    }
    // Whether this is the top code; clears the status.
    bool reported(scl::Scl_status_code code) {
        const bool found = status.value() == code;
        status.clear();
        return found;
    }

    scl::Scl_status status;
    scl::Scl_heap_buffer buffer;
};

std::string text_in(const scl::Scl_buffer& buffer) {
    const auto bytes = buffer.contents();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

TEST_F(Stream, ReadsAndSeeksAreChecked) {
    fill("0123456789");
    scl::Scl_buffered_istream in(buffer, false, status, Scl_eol::none);
    in.set_position(10);
    in.seek(Scl_seek::relative, -2, status);
    std::uint64_t value = 77;
    in.read_be(value, status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_END_OF_DATA) && value == 77);
    in.set_position(8);
    EXPECT_EQ(in.read_char(), '8');
    EXPECT_DEBUG_DEATH((void)in.window(WINDOW + 1, status), "WINDOW_BYTES"); // none so large
    in.seek(Scl_seek::relative, 1, status);
    EXPECT_TRUE(status.ok()) << "the end itself can be reached";
    in.seek(Scl_seek::relative, -11, status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
    for (const std::int64_t step : {std::int64_t{1}, std::numeric_limits<std::int64_t>::max()}) {
        in.seek(Scl_seek::relative, step, status);
        EXPECT_TRUE(reported(scl::SCL_STATUS_END_OF_DATA));
    }
    EXPECT_EQ(in.tell(), 10U);
    for (const std::uint64_t place : {10U, 4000U}) { // wherever the position stands
        in.set_position(place);
        EXPECT_EQ(in.read_char(), 0);
        EXPECT_TRUE(reported(scl::SCL_STATUS_END_OF_DATA));
    }
}

// Random reads of all sizes around the window's edges, against the bytes themselves.
TEST_F(Stream, ReadingAheadGivesTheBytesThatAreThere) {
    std::mt19937 random(1);
    std::string bytes(3 * WINDOW + 17, '\0');
    std::ranges::generate(bytes, [&random] { return static_cast<char>(random()); });
    fill(bytes);
    const test::Piecewise_buffer file(buffer);
    scl::Scl_buffered_istream in(file, false, status, Scl_eol::none);
    std::uint64_t at = 0;
    for (int i = 0; i < 3000; ++i) {
        if (i % 3 == 0) in.set_position(at = random() % bytes.size());
        if (i % 100 == 0) in.limit_read_ahead(i % 200 == 0 ? WINDOW : 16);
        ASSERT_EQ(in.tell(), at);
        std::string read(random() % (i % 7 == 0 ? 2 * WINDOW : 40), '\0');
        const std::size_t wanted = read.size();
        read.resize(in.read(wanted, read.data(), status));
        ASSERT_EQ(read.size() < wanted, status == scl::SCL_STATUS_END_OF_DATA);
        ASSERT_TRUE(read == bytes.substr(at, wanted));
        at += read.size();
        status.clear();
        const auto window = in.window(50, status);
        ASSERT_GE(window.size(), std::min<std::size_t>(50, bytes.size() - in.tell()));
    }
}

TEST_F(Stream, AReadErrorIsNotTheEndOfTheData) {
    fill(std::string(2 * WINDOW, 'x'));
    const test::Piecewise_buffer file(buffer, WINDOW);
    scl::Scl_buffered_istream in(file, false, status, Scl_eol::none);
    std::vector<std::byte> read(WINDOW - 1);
    EXPECT_EQ(in.read(read.size(), read.data(), status), read.size());
    EXPECT_EQ(in.window(2, status).size(), 1U) << "what was there stays";
    std::uint16_t value = 0;
    in.read_be(value, status);
    EXPECT_TRUE(status.contains_value(scl::SCL_STATUS_READ_FAILED));
    EXPECT_FALSE(status.contains_value(scl::SCL_STATUS_END_OF_DATA));
}

TEST_F(Stream, AFileCutWhileItIsReadIsAFailureAndNotTheEnd) {
    const test::Workplace place;
    place.write("file", std::string(3 * WINDOW, 'x'));
    std::u16string name;
    scl::scl_stow(place.path("file").string(), name);
    scl::Scl_file_buffer file(name, scl::Scl_file_open::existing, scl::Scl_file_access::read,
                              scl::SCL_FILE_PLAIN, scl::SCL_FILE_FRONT_TO_BACK, status);
    scl::Scl_buffered_istream in(file, false, status, Scl_eol::none);
    std::filesystem::resize_file(place.path("file"), WINDOW + 5);
    std::vector<std::byte> read(2 * WINDOW); // past the window
    EXPECT_EQ(in.read(read.size(), read.data(), status), WINDOW + 5);
    ASSERT_EQ(status.value(), scl::SCL_STATUS_READ_FAILED);
    EXPECT_EQ(status.entries()[0].argument->text(), name + u": the file became shorter");
    EXPECT_TRUE(status.entries().size() == 1 && reported(scl::SCL_STATUS_READ_FAILED));
    in.set_position(WINDOW);
    EXPECT_EQ(in.window(status).size(), 5U);
    EXPECT_TRUE(reported(scl::SCL_STATUS_READ_FAILED));
    file.close(status);
    EXPECT_EQ(file.read_at(0, read, status), 0U);
    EXPECT_TRUE(status.entries().size() == 1 && reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
}

TEST_F(Stream, WritesGoBackAndOverButLeaveNoGap) {
    scl::Scl_ostream out(buffer, status, Scl_eol::none);
    const std::string large(500000, 'x');
    out.write("0123456789" + large, status);
    out.write("end", status); // not written out yet
    out.set_position(4, status);
    out.write("--", status);
    out.detach(status);
    EXPECT_TRUE(status.ok());
    EXPECT_TRUE(text_in(buffer) == "0123--6789" + large + "end");
    out.init(buffer, status, Scl_eol::none);
    out.set_position(500014, status);
    out.write("y", status);
    out.detach(status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
}

// Notes where each write ends.
class Noting_buffer final : public scl::Scl_memory_buffer {
public:
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                  scl::Scl_status& status) override {
        ends.push_back(offset + bytes.size());
        kept.write_at(offset, bytes, status);
    }
    [[nodiscard]] std::span<const std::byte> contents() const override { return kept.contents(); }

    scl::Scl_heap_buffer kept;
    std::vector<std::uint64_t> ends;
};

TEST_F(Stream, WritesWholePieces) {
    constexpr std::uint64_t PIECE = 256U << 10;
    Noting_buffer noting;
    std::string written(88, 'h');
    noting.write_at(0, std::as_bytes(std::span(written)), status);
    noting.ends.clear();
    scl::Scl_ostream out(noting);
    out.set_position(written.size(), status);
    std::mt19937 random(21); // NOLINT: the same numbers each time
    while (written.size() < 5 * PIECE) {
        const std::string bytes(random() % 90000, static_cast<char>('a' + random() % 26));
        if (random() % 2 == 0) {
            out.write(bytes, status);
        } else {
            const auto room = out.room(bytes.size(), status);
            std::ranges::copy(std::as_bytes(std::span(bytes)), room.begin());
            out.advance(bytes.size());
        }
        written += bytes;
        EXPECT_EQ(out.tell(), written.size());
    }
    ASSERT_GE(noting.ends.size(), 4U);
    for (const std::uint64_t end : noting.ends) {
        EXPECT_EQ(end % PIECE, 0U);
    }
    out.detach(status);
    EXPECT_TRUE(status.ok());
    EXPECT_TRUE(text_in(noting) == written);
}

// Disk room is reserved ahead of large writes; nothing of it may be left in the finished file.
TEST_F(Stream, ALargeFileTakesNoMoreRoomThanItsBytes) {
    constexpr std::size_t PIECE = std::size_t{1} << 20;
    constexpr std::uint64_t DISK_BLOCK = 512; // of st_blocks
    const std::string path = testing::TempDir() + "large_file_" + std::to_string(::getpid());
    scl::Scl_file_buffer file(std::u16string(path.begin(), path.end()), scl::Scl_file_open::create,
                              scl::Scl_file_access::read_write, scl::SCL_FILE_PLAIN,
                              scl::SCL_FILE_FRONT_TO_BACK, status);
    const std::vector<std::byte> bytes(PIECE, std::byte{'x'});
    for (std::size_t i = 0; i < 9; ++i) {
        file.write_at(i * PIECE, bytes, status);
    }
    EXPECT_EQ(std::filesystem::file_size(path), 9 * PIECE) << "room is not size";
    file.truncate(9 * PIECE + 1, status);
    EXPECT_EQ(status.value(), scl::SCL_STATUS_OUT_OF_BOUNDS);
    status.clear();
    file.truncate(8 * PIECE, status);
    file.write_at(8 * PIECE, std::span(bytes).first(1), status);
    file.close(status);
    EXPECT_TRUE(status.ok());
    struct stat facts {};
    ASSERT_EQ(::stat(path.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_size, 8 * PIECE + 1);
    EXPECT_LE(static_cast<std::uint64_t>(facts.st_blocks) * DISK_BLOCK, 9 * PIECE);
    std::filesystem::remove(path);
}

TEST_F(Stream, FilesAreWrittenWithoutGapsAndOnlyWhenTheyAreNew) {
    const test::Workplace place;
    std::u16string name;
    scl::scl_stow(place.path("file").string(), name);
    const auto bytes = std::as_bytes(std::span("0123"));
    scl::Scl_file_buffer file(name, scl::Scl_file_open::create, scl::Scl_file_access::read_write,
                              scl::SCL_FILE_PLAIN, scl::SCL_FILE_FRONT_TO_BACK, status);
    file.write_at(0, bytes.first(2), status);
    file.write_at(1, bytes.first(4), status);
    EXPECT_EQ(file.size(false, status), 5U);
    file.write_at(6, bytes.first(1), status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
    file.open(name, scl::Scl_file_open::existing, scl::Scl_file_access::read_write,
              scl::SCL_FILE_PLAIN, scl::SCL_FILE_FRONT_TO_BACK, status);
    EXPECT_EQ(file.size(false, status), 5U);
    file.write_at(0, bytes.first(1), status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
    EXPECT_EQ(place.read("file"), "00123");
}

TEST_F(Stream, WritesThatReachNothingAreReported) {
    scl::Scl_file_buffer closed;
    scl::Scl_ostream out(closed, status, Scl_eol::none);
    out.write("lost", status);
    out.write(std::string(500000, 'x'), status); // past the storage: flushes first
    ASSERT_EQ(status.value(), scl::SCL_STATUS_OUT_OF_BOUNDS);
    EXPECT_EQ(status.entries()[0].count, 1U) << "the flush's own failure, and no other";
    EXPECT_EQ(out.tell(), 500004U);
    out.detach(status);
    status.clear();
    out.write("x", status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
    out.write_be(std::uint64_t{1}, status);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
}

TEST_F(Stream, SubBuffersStayInsideTheirParent) {
    fill("0123456789");
    const scl::Scl_sub_buffer middle(buffer, 2, 5, status);
    std::array<std::byte, 10> read{};
    EXPECT_EQ(middle.read_at(1, read, status), 2U);
    EXPECT_EQ(text_in(middle), "234");
    EXPECT_EQ(scl::Scl_sub_buffer(buffer, 10, 10, status).size(false, status), 0U);
    EXPECT_TRUE(status.ok());
    for (const auto& [begin, end] : {std::pair(3U, 2U), {0U, 11U}, {11U, 11U}}) {
        const scl::Scl_sub_buffer outside(buffer, begin, end, status);
        EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
        EXPECT_EQ(outside.contents().size(), 0U);
    }
    EXPECT_EQ(middle.read_at(4, read, status), 0U);
    EXPECT_TRUE(reported(scl::SCL_STATUS_OUT_OF_BOUNDS));
}

} // namespace
