#include "program.hpp"

#include <gtest/gtest.h>

namespace {

const std::string REDACT = "'" DSMAKE_REDACT "' ";

// What the example makes of a file, or its exit status when it fails.
std::string redacted(const std::string& text, const std::string& note = "'Checked.'") {
    const test::Workplace place;
    place.write("in", text);
    const test::Outcome outcome = place.shell(REDACT + "in out " + note);
    return outcome.exit_status == 0 ? place.read("out") : outcome.err;
}

TEST(Redact_example, KeepsTheLastFourDigitsOfLongNumbers) {
    EXPECT_EQ(redacted("Card 4111111111111111, ext 12345678901.\n"),
              "Card ************1111, ext 12345678901.\nChecked.\n");
    EXPECT_EQ(redacted("1,234,567,890,12.3 4111111111111111abc\n"),
              "************0,12.3 ************1111abc\nChecked.\n");
    EXPECT_EQ(redacted("\xEF\xBB\xBF\xD9\xA1\xD9\xA1\xD9\xA1\xD9\xA1\xD9\xA1\xD9\xA1\xD9\xA1"
                       "\xD9\xA1\xD9\xA1\xD9\xA1\xD9\xA1\xD9\xA2 \xFF\n"),
              "\xEF\xBB\xBF********\xD9\xA1\xD9\xA1\xD9\xA1\xD9\xA2 \xFF\nChecked.\n");
}

TEST(Redact_example, AddsTheNoteAsALine) {
    EXPECT_EQ(redacted("a\r\nb"), "a\r\nb\r\nChecked.\r\n");
    EXPECT_EQ(redacted("a 1\n", "''"), "a 1\n");
    EXPECT_EQ(redacted("a\n", ""), "a\nLong numbers were made unreadable.\n");
}

TEST(Redact_example, SaysWhatFails) {
    EXPECT_EQ(redacted("", "a b"), "usage: redact IN OUT [NOTE]\n");
    const test::Workplace place;
    place.write("in", "a");
    EXPECT_EQ(place.shell(REDACT + "in in").exit_status, 1);
    EXPECT_EQ(place.shell(REDACT + "none out").exit_status, 1);
    EXPECT_FALSE(place.exists("out"));
    EXPECT_EQ(place.read("in"), "a");
}

} // namespace
