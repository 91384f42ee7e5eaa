#include "scl/io/scl_buffers.hpp"
#include "token_support.hpp"
#include "ucl/ucl_buffer_patcher.hpp"

namespace {

std::u16string applied(const ucl::Ucl_buffer_patcher& patcher, std::u16string_view content) {
    scl::Scl_heap_buffer output;
    scl::Scl_status status;
    patcher.apply(scl::Scl_wstring_buffer(content), output, status);
    EXPECT_EQ(status.value(), 0U);
    return test::text_in(output);
}

TEST(Buffer_patcher, RefusesOddNumbersAndRangesThatDoNotEnd) {
    ucl::Ucl_buffer_patcher patcher;
    EXPECT_FALSE(patcher.add_insert(1, u"x"));
    EXPECT_FALSE(patcher.add_delete(0, 1));
    EXPECT_FALSE(patcher.add_delete(~std::uint64_t{1}, 4));
    EXPECT_TRUE(patcher.add_delete(20, 0));
    EXPECT_EQ(patcher.size(), 0U);
}

TEST(Buffer_patcher, TransactionsAreOnTrial) {
    ucl::Ucl_buffer_patcher patcher;
    EXPECT_FALSE(patcher.commit() || patcher.rollback());
    EXPECT_TRUE(patcher.begin() && !patcher.begin());
    EXPECT_TRUE(patcher.add_delete(0, 2));
    EXPECT_FALSE(patcher.committed());
    EXPECT_EQ(applied(patcher, u"abc"), u"abc");
    EXPECT_TRUE(patcher.commit() && patcher.committed());
    EXPECT_TRUE(patcher.begin());
    EXPECT_TRUE(patcher.add_edit(4, 2, u"gone") && patcher.add_insert(400, u"far"));
    EXPECT_EQ(applied(patcher, u"abc"), u"bc");
    EXPECT_TRUE(patcher.rollback() && !patcher.in_transaction());
    EXPECT_TRUE(patcher.add_edit(4, 2, u"C"));
    EXPECT_EQ(applied(patcher, u"abc"), u"bC");
    EXPECT_EQ(applied(patcher, u"abc"), u"bC"); // the queue stays
    EXPECT_TRUE(patcher.begin() && patcher.add_insert(0, u"x"));
    patcher.reset();
    EXPECT_FALSE(patcher.commit());
    EXPECT_TRUE(patcher.begin() && patcher.rollback());
}

TEST(Buffer_patcher, PastTheContentNothingIsWritten) {
    for (const std::uint64_t offset : {std::uint64_t{6}, std::uint64_t{1} << 40U}) {
        ucl::Ucl_buffer_patcher patcher;
        EXPECT_TRUE(patcher.add_insert(0, u"x") && patcher.add_delete(offset, 2));
        scl::Scl_heap_buffer output;
        scl::Scl_status status;
        patcher.apply(scl::Scl_wstring_buffer(u"abc"), output, status);
        EXPECT_EQ(status.value(), 0xC2000019);
        EXPECT_EQ(output.contents().size(), 0U);
    }
}

} // namespace
