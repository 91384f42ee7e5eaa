#include "data_set_files.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

namespace {

using test::Outcome;
using test::Workplace;

constexpr int FAULT = 255;
constexpr std::string_view USAGE_START = "\n\ndsmake 22.08.00\n\nUsage:\n\n";
constexpr std::string_view USAGE_END = "\t-h  means just display usage message.\n\n";

// The message stands alone on standard error, its line end and the usage text on standard output.
void expect_usage_error(const Outcome& outcome, std::string_view message) {
    EXPECT_EQ(outcome.exit_status, FAULT);
    EXPECT_EQ(outcome.err, message);
    EXPECT_TRUE(outcome.out.starts_with(USAGE_START)) << outcome.out;
    EXPECT_TRUE(outcome.out.ends_with(USAGE_END));
}

class Command_line : public testing::Test {
protected:
    void SetUp() override { place.write("in", "Ann\tSmith\n"); }

    Workplace place;
    const std::string schema = "First,Simple;Last,SimpleNC";
};

TEST_F(Command_line, AloneItShowsItsUsage) {
    const Outcome outcome = place.run({});
    EXPECT_EQ(outcome.exit_status, FAULT);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out.size(), 1069U);
    EXPECT_TRUE(outcome.out.starts_with(USAGE_START.substr(1)));
    expect_usage_error(place.run({"-hu"}), "");
    EXPECT_TRUE(
        place.shell("\"$DSMAKE\" -x 2>&1").out.starts_with("Commmand line invalid.\n\ndsmake"))
        << "both streams into one place keep their order";
}

TEST_F(Command_line, FaultsAreReportedInTheOrderMet) {
    expect_usage_error(place.run({"-i", "none", "-x"}), "Input Filename Invalid.");
    expect_usage_error(place.run({"-s", "a,Simple", "-s", "b,Simple"}),
                       "Multiple schemas detected.");
    expect_usage_error(place.run({"-s", ";", "-s", "a"}), "Invalid schema format, see usage.");
    for (const char* bad : {"-x", "-K", "-:", "?", "-k"}) {
        expect_usage_error(place.run({bad}), "Commmand line invalid.");
    }
    expect_usage_error(place.run({"word", "-x"}), "Invalid number of arguments.");
    expect_usage_error(place.run({"-s", schema, "-i", "in", "-o", "out"}),
                       "Invalid number of arguments.");
    EXPECT_EQ(place.read("out"), "") << "created when the option was read, and left";
    expect_usage_error(place.run({"-o", "out", "-x"}), "Output Filename Invalid.");
    expect_usage_error(place.run({"-u", "-i", "in", "-o", "new", "-s", schema}),
                       "Invalid number of arguments.");
}

TEST_F(Command_line, BuildsWithEitherPrefixAndIgnoresAnUpgradeFlag) {
    const Outcome first = place.run(test::build_arguments(schema, {"Last"}));
    EXPECT_EQ(first.exit_status, 0);
    EXPECT_EQ(first.err + first.out, "");
    EXPECT_FALSE(place.exists("mid_buf"));
    const std::vector<std::string> other_form = {"-u", "/kLast", "/s", schema, "-iin",
                                                 "/o", "again",  "--", "-x"};
    EXPECT_EQ(place.run(other_form).exit_status, 0);
    EXPECT_EQ(place.read("again"), place.read("out"));
}

TEST_F(Command_line, RecordFaultsLeaveTheOutputEmpty) {
    const auto expect_fault = [this](const std::vector<std::string>& lines, const char* message) {
        for (const std::string& line : lines) {
            place.write("in", "Ann\tSmith\n" + line);
            place.remove("out");
            expect_usage_error(place.run(test::build_arguments(schema, {"Last"})), message);
            EXPECT_TRUE(place.exists("out"));
            EXPECT_EQ(place.read("out"), "");
        }
    };
    expect_fault({"Ann\n", "Ann\tLee\tx\n", "\n", "a\tb\r\n\r\n"},
                 "Field count does not match the schema.");
    expect_fault({"a\tb\r", "a\rb\n", "a\tb\r\r\n"}, "Invalid line ending in input file.");
    EXPECT_FALSE(place.exists("mid_buf"));
}

TEST_F(Command_line, GenerationFaultsRemoveTheOutput) {
    const auto expect_failure = [this](const std::vector<std::string>& arguments,
                                       std::string_view status_text) {
        const Outcome outcome = place.run(arguments);
        EXPECT_EQ(outcome.exit_status, FAULT);
        EXPECT_TRUE(outcome.err.starts_with("Failed to generate file.0x")) << outcome.err;
        EXPECT_NE(outcome.err.find(status_text), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.out, "\n\n");
        EXPECT_FALSE(place.exists("out"));
        EXPECT_FALSE(place.exists("mid_buf"));
    };
    expect_failure(test::build_arguments(schema, {"last"}), "0xC2012511: The key name 'last' ");
    expect_failure(test::build_arguments(schema, {"%n%s\x1b[2J"}), "'%n%s\\x1B[2J'");
    expect_failure(test::build_arguments("A,Simple;A,Simple", {"A"}), "0xC2012510: ");
    const std::string both =
        place.shell("\"$DSMAKE\" -s '" + schema + "' -k last -i in -o out 2>&1").out;
    EXPECT_TRUE(both.starts_with("Failed to generate file.\n0x")) << both;
    place.write("in", "Ann\t \xc2\xa0\t\n");
    expect_failure(test::build_arguments(schema + ";C,Simple", {"LAST"}), "0xC2012528: ");
}

TEST_F(Command_line, RecordsThatCannotBeReadAreAWarning) {
    place.write("in", "a\tb\nc\td\ne\tf\n");
    const Outcome outcome =
        place.run(test::build_arguments("First,Simple;Last,SimpelNC", {"First"}));
    EXPECT_EQ(outcome.exit_status, 0);
    EXPECT_TRUE(outcome.err.starts_with("Warnings:0x8201252A: Records that can be read: "))
        << outcome.err;
    EXPECT_NE(outcome.err.find(" of 3 lines. "), std::string::npos);
    EXPECT_FALSE(place.read("out").empty());
}

// A word whose token value, in the record's byte order, has the wanted bytes there.
template <typename Is_wanted>
std::string word_with(const Is_wanted& is_wanted) {
    for (int i = 0;; ++i) {
        const std::string word = "w" + std::to_string(i);
        std::vector<std::uint64_t> values;
        (void)txtdfc::txtdfc_token_values(test::wide(word), values);
        if (is_wanted(values.at(0))) return word;
    }
}

constexpr std::uint64_t count_at(std::uint64_t value, unsigned byte) {
    return value >> (48 - 8 * byte) & 0xFFFF;
}

// A count of 65,537 is written as 1. Of the words behind the first, three have values that hold
// counts where a reader now looks for them; they lead it to the end of the second row, with as many
// records as there are rows.
TEST_F(Command_line, ARowThatIsReadAsAnotherRowIsAWarning) {
    std::vector<std::string> words(65537, "x");
    std::uint64_t first = 0;
    words[1] = word_with([&](std::uint64_t value) {
        first = count_at(value, 0);
        return first > 10000 && first < 20000;
    });
    std::uint64_t second = 0;
    words[1 + first] = word_with([&](std::uint64_t value) { // a record ends in its third byte
        second = count_at(value, 3);
        return (value >> 40 & 0xFF) == 0 && second > 10000 && second < 40000;
    });
    words[1 + first + second] = word_with(
        [&](std::uint64_t value) { return count_at(value, 5) == 65539 - first - second; });
    std::string row;
    for (const std::string& word : words) {
        row += word + ' ';
    }
    place.write("in", row + "\tmark\nAnn\tSmith\n");
    const Outcome outcome = place.run(test::build_arguments("A,Simple;B,Simple", {"A"}));
    EXPECT_EQ(outcome.exit_status, 0);
    EXPECT_TRUE(outcome.err.starts_with("Warnings:0x8201252B: Records with a value of more than "
                                        "65,535 words and marks: 1, the first is 1. "))
        << outcome.err;
    EXPECT_EQ(outcome.err.find("0x8201252A"), std::string::npos) << "as many records as rows";
}

TEST_F(Command_line, DuplicatesAreAWarning) {
    place.write("in", "a\tb\na\tb\nA\tb\na\tB\n");
    const Outcome outcome = place.run(test::build_arguments(schema, {"Last", "First"}));
    EXPECT_EQ(outcome.exit_status, 0);
    // Sorted by last name all four are neighbours, but the third differs from both sides.
    EXPECT_TRUE(outcome.err.starts_with("Warnings:0x82012512: ")) << outcome.err;
    EXPECT_TRUE(outcome.err.ends_with("(3 times)")) << outcome.err;
    EXPECT_EQ(outcome.out, "\n\n");
}

} // namespace
