#include "scl/scl_heap_buffer.hpp"
#include "scl/scl_wstring_buffer.hpp"
#include "ucl/ucl_buffer_patcher.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

std::u16string text_in(const scl::Scl_buffer& buffer) {
    const std::span<const std::byte> bytes = buffer.contents();
    std::u16string text(bytes.size() / 2, u'\0');
    if (!bytes.empty()) std::memcpy(text.data(), bytes.data(), bytes.size());
    return text;
}

std::u16string applied(const ucl::Ucl_buffer_patcher& patcher, const scl::Scl_buffer& content) {
    scl::Scl_heap_buffer output;
    scl::Scl_status status;
    patcher.apply(content, output, status);
    EXPECT_EQ(status.value(), 0U);
    return text_in(output);
}

std::u16string applied(const ucl::Ucl_buffer_patcher& patcher, std::u16string_view content) {
    return applied(patcher, scl::Scl_wstring_buffer(content));
}

TEST(BufferPatcher, EditsOfAllKindsInAnyOrder) {
    ucl::Ucl_buffer_patcher patcher;
    EXPECT_EQ(applied(patcher, u"abcdef"), u"abcdef");
    EXPECT_FALSE(patcher.committed());
    EXPECT_TRUE(patcher.add_insert(12, u"!"));
    EXPECT_TRUE(patcher.add_edit(4, 4, u"X"));
    EXPECT_TRUE(patcher.add_delete(0, 2));
    EXPECT_TRUE(patcher.add_edit(8, 0, u"long text"));
    EXPECT_TRUE(patcher.committed());
    EXPECT_EQ(applied(patcher, u"abcdef"), u"bXlong textef!");
    EXPECT_EQ(applied(patcher, u"abcdef"), u"bXlong textef!"); // the queue stays
    patcher.reset();
    EXPECT_EQ(patcher.size(), 0U);
    EXPECT_TRUE(patcher.add_insert(0, u"x"));
    EXPECT_EQ(applied(patcher, u""), u"x");
}

TEST(BufferPatcher, OneOffsetKeepsTheOrderOfQueueing) {
    ucl::Ucl_buffer_patcher patcher;
    EXPECT_TRUE(patcher.add_edit(2, 2, u"B"));
    EXPECT_TRUE(patcher.add_insert(4, u"1"));
    EXPECT_TRUE(patcher.add_insert(2, u"2"));
    EXPECT_TRUE(patcher.add_insert(4, u"3"));
    EXPECT_TRUE(patcher.add_edit(4, 2, u"C"));
    EXPECT_TRUE(patcher.add_insert(2, u"4"));
    EXPECT_TRUE(patcher.add_insert(4, u"5"));
    EXPECT_EQ(applied(patcher, u"abcd"), u"a24B135Cd");
}

TEST(BufferPatcher, RefusesWhatDisagreesWithTheQueue) {
    ucl::Ucl_buffer_patcher patcher;
    EXPECT_TRUE(patcher.add_edit(4, 6, u"-"));
    EXPECT_TRUE(patcher.add_insert(14, u"+"));
    for (const auto& [offset, length] : {std::pair{4, 6},
                                         {4, 2},
                                         {2, 4},
                                         {8, 2},
                                         {8, 4},
                                         {2, 20},
                                         {6, 0},
                                         {8, 0},
                                         {10, 6},
                                         {12, 4}}) {
        EXPECT_FALSE(patcher.add_edit(static_cast<std::uint64_t>(offset),
                                      static_cast<std::uint64_t>(length), u"x"))
            << offset << " " << length;
    }
    EXPECT_FALSE(patcher.add_insert(1, u"x"));
    EXPECT_FALSE(patcher.add_delete(0, 1));
    EXPECT_FALSE(patcher.add_delete(~std::uint64_t{1}, 4));
    EXPECT_TRUE(patcher.add_delete(20, 0));
    EXPECT_EQ(patcher.size(), 2U);
    EXPECT_TRUE(patcher.add_delete(2, 2));
    EXPECT_TRUE(patcher.add_delete(10, 4));
    EXPECT_TRUE(patcher.add_delete(14, 2));
    EXPECT_EQ(applied(patcher, u"0123456789"), u"0-+89");
}

TEST(BufferPatcher, ManyInsertsAtOneOffset) {
    ucl::Ucl_buffer_patcher patcher;
    std::u16string expected = u"a";
    for (char16_t i = 0; i < 60000; ++i) {
        const char16_t unit[] = {static_cast<char16_t>(i % 26 + 'A')};
        ASSERT_TRUE(patcher.add_insert(2, {unit, 1}));
        expected += unit[0];
    }
    EXPECT_EQ(applied(patcher, u"ab"), expected + u"b");
}

TEST(BufferPatcher, Transactions) {
    ucl::Ucl_buffer_patcher patcher;
    EXPECT_FALSE(patcher.commit());
    EXPECT_FALSE(patcher.rollback());
    EXPECT_TRUE(patcher.begin());
    EXPECT_FALSE(patcher.begin());
    EXPECT_TRUE(patcher.add_delete(0, 2));
    EXPECT_FALSE(patcher.committed());
    EXPECT_EQ(applied(patcher, u"abc"), u"abc");
    EXPECT_TRUE(patcher.commit());
    EXPECT_TRUE(patcher.committed());
    EXPECT_TRUE(patcher.begin());
    EXPECT_TRUE(patcher.add_edit(4, 2, u"gone"));
    EXPECT_TRUE(patcher.add_insert(400, u"far"));
    EXPECT_EQ(applied(patcher, u"abc"), u"bc");
    EXPECT_TRUE(patcher.rollback());
    EXPECT_FALSE(patcher.in_transaction());
    EXPECT_TRUE(patcher.add_edit(4, 2, u"C"));
    EXPECT_EQ(applied(patcher, u"abc"), u"bC");
    EXPECT_TRUE(patcher.begin());
    EXPECT_TRUE(patcher.add_insert(0, u"x"));
    patcher.reset();
    EXPECT_FALSE(patcher.commit());
    EXPECT_EQ(applied(patcher, u"abc"), u"abc");
}

TEST(BufferPatcher, PastTheContentNothingIsWritten) {
    const scl::Scl_wstring_buffer content(u"abc");
    for (const std::uint64_t offset : {std::uint64_t{6}, std::uint64_t{1} << 40U}) {
        ucl::Ucl_buffer_patcher patcher;
        EXPECT_TRUE(patcher.add_insert(0, u"x"));
        EXPECT_TRUE(patcher.add_delete(offset, 2));
        scl::Scl_heap_buffer output;
        scl::Scl_status status;
        patcher.apply(content, output, status);
        EXPECT_EQ(status.value(), 0xC2000019);
        EXPECT_EQ(output.contents().size(), 0U);
    }
}

// A content of more than 4 GiB, each unit the same, that says how much of it was read.
class Huge_buffer final : public scl::Scl_buffer {
public:
    static constexpr std::uint64_t SIZE = (std::uint64_t{5} << 30U) + 40;

    [[nodiscard]] std::uint64_t size(bool /*in_units*/,
                                     scl::Scl_status& /*status*/) const override {
        return SIZE;
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        scl::Scl_status& status) const override {
        if (offset >= fails_from) status.push(scl::SCL_STATUS_READ_FAILED);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = std::byte((offset + i) % 2 == 0 ? '.' : 0);
        }
        read += bytes.size();
        return bytes.size();
    }

    std::uint64_t fails_from = SIZE;
    mutable std::uint64_t read = 0;
};

TEST(BufferPatcher, OffsetsBeyondFourGigabytes) {
    Huge_buffer content;
    ucl::Ucl_buffer_patcher patcher;
    EXPECT_TRUE(patcher.add_delete(4, Huge_buffer::SIZE - 20));
    EXPECT_TRUE(patcher.add_edit(Huge_buffer::SIZE - 8, 4, u"X"));
    EXPECT_EQ(applied(patcher, content), u"......X..");
    EXPECT_EQ(content.read, 16U);
    content.fails_from = Huge_buffer::SIZE - 4;
    scl::Scl_heap_buffer output;
    scl::Scl_status status;
    patcher.apply(content, output, status);
    EXPECT_EQ(status.value(), 0xC2000013);
}

} // namespace
