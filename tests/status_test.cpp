#include "scl/status/scl_status.hpp"
#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"

#include <gtest/gtest.h>

namespace {

constexpr scl::Scl_status_code WARNING = 0x82012512;
constexpr scl::Scl_status_code KEY_NAME = 0xC2012511;
constexpr scl::Scl_status_code NO_TEXT_FOR_IT = 0xC2019999;

std::string shown(const scl::Scl_status& status) {
    std::u16string wide = u"replaced";
    scl::Scl_status_lookup::to_string(status, wide);
    std::string narrow;
    scl::scl_wtos(wide, narrow, true);
    return narrow;
}

TEST(Status, SeverityIsThatOfTheTopEntryButOkLooksAtAll) {
    scl::Scl_status status;
    status.push(WARNING);
    EXPECT_TRUE(status.ok() && status.is_warning() && !status.has_failed());
    status.push(scl::SCL_STATUS_END_OF_DATA);
    status.push(WARNING);
    EXPECT_FALSE(status.ok()) << "an error below a warning is still an error";
    EXPECT_FALSE(status.has_failed()) << "loops look at the top entry alone";
    EXPECT_TRUE(status.contains_value(scl::SCL_STATUS_END_OF_DATA));
    status = KEY_NAME;
    EXPECT_EQ(status.entries().size(), 1U) << "assignment replaces everything";
}

TEST(Status, NeighboursThatAreEqualAreHeldAsOne) {
    scl::Scl_status status;
    for (int i = 0; i < 1000; ++i) {
        status.push(WARNING);
    }
    for (const char* const name : {"a", "a", "b"}) {
        status.push(KEY_NAME, scl::Scl_wstring_status_arg(name));
    }
    status.push(KEY_NAME);
    ASSERT_EQ(status.entries().size(), 4U);
    EXPECT_NE(shown(status).find(" (1000 times)"), std::string::npos);
}

TEST(Status, OnlyTheTopEntryOfALocalStatusIsPassedOn) {
    scl::Scl_status local;
    scl::Scl_status status;
    status.push_top(local);
    EXPECT_TRUE(status.entries().empty());
    local.push(WARNING);
    local.push(KEY_NAME, scl::Scl_wstring_status_arg(u"Surname"));
    status.push_top(local);
    ASSERT_EQ(status.entries().size(), 1U);
    EXPECT_EQ(status.entries()[0].argument->text(), u"Surname");
}

// A file may be named by anybody: its name must not reach the terminal as a command. The second
// half of U+1F480 in UTF-16 is also what a stray byte becomes.
TEST(Status, TextHasALinePerEntryWithControlsAndStrayBytesSpelledOut) {
    const scl::Scl_wstring_status_arg name("%s\x1b[2J\n\x7f\xc2\x9b\xff\xf0\x9f\x92\x80é");
    scl::Scl_status status;
    status.push(WARNING);
    status.push(KEY_NAME, name);
    status.push(NO_TEXT_FOR_IT);
    const std::string text = shown(status);
    EXPECT_TRUE(text.starts_with("0xC2019999\n0xC2012511: The key name '%s\\x1B[2J\\x0A\\x7F\\x9B"
                                 "\\xFF\xf0\x9f\x92\x80é' matches"))
        << text;
    EXPECT_NE(text.find("\n0x82012512: "), std::string::npos);
    EXPECT_NE(text.back(), '\n');
}

TEST(Status, EveryCodeInUseHasAText) {
    for (const scl::Scl_status_code code :
         {0xC2000001U, 0xC2000010U, 0xC2000011U, 0xC2000012U, 0xC2000013U, 0xC2000014U, 0xC2000015U,
          0xC2000016U, 0xC2000019U, 0xC200002AU, 0xC200006AU, 0xC200006BU, 0xC2012510U, 0xC2012511U,
          0x82012512U, 0x8201252AU, 0x8201252BU, 0xC2012513U, 0xC2012514U, 0xC2012515U, 0xC201251AU,
          0xC2012521U, 0xC2012522U, 0xC2012525U, 0xC2012526U, 0xC2012527U, 0xC2012528U}) {
        scl::Scl_status status;
        status.push(code);
        EXPECT_GT(shown(status).size(), 30U) << shown(status);
    }
}

} // namespace
