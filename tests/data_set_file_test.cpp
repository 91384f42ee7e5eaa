#include "program.hpp"
#include "small_reader.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using test::Outcome;
using test::read_file;
using test::Small_reader;
using test::Workplace;
using Values = Small_reader::Values;

std::u16string digits(std::size_t number) {
    const std::string narrow = std::to_string(number);
    return {narrow.begin(), narrow.end()};
}

class Data_set_file : public testing::Test {
protected:
    // Builds the lines and returns the file.
    std::string build(const std::string& lines, const std::string& schema,
                      const std::vector<std::string>& keys, bool has_warning = false) {
        place.write("in", lines);
        place.remove("out");
        const Outcome outcome = place.run(test::build_arguments(schema, keys));
        EXPECT_EQ(outcome.exit_status, 0);
        EXPECT_EQ(outcome.err.starts_with("Warnings:"), has_warning) << outcome.err;
        return place.read("out");
    }

    Workplace place;
};

// The example of docs/file-format.md, taken from the document itself.
struct Worked_example {
    Worked_example() : text(read_file(DSMAKE_FILE_FORMAT)) {
        text.erase(0, text.find("## A worked example"));
        std::istringstream lines(text.substr(text.find("```") + 4));
        for (std::string line; std::getline(lines, line) && line != "```";) {
            std::istringstream words(line);
            std::string word;
            words >> word; // the offset
            while (words >> word) {
                bytes += static_cast<char>(std::stoi(word, nullptr, 16));
            }
        }
    }
    // The next text in backticks; what stands in the first four is the input and how to build it.
    std::string quoted() {
        const std::size_t start = text.find('`', at) + 1;
        const std::size_t end = text.find('`', start);
        at = end + 1;
        return text.substr(start, end - start);
    }

    std::string text;
    std::string bytes;
    std::size_t at = 0;
};

TEST_F(Data_set_file, IsTheDocumentsWorkedExample) {
    Worked_example example;
    EXPECT_EQ(example.bytes.size(), 128U);
    const std::string first = example.quoted();
    const std::string input = first + '\t' + example.quoted() + '\n';
    const std::string schema = example.quoted();
    EXPECT_EQ(build(input, schema, {example.quoted()}), example.bytes);
    const Small_reader reader(example.bytes);
    ASSERT_EQ(reader.records(), Values{72});
    const Values name = {Small_reader::token(u"Mary"), Small_reader::token(u"Ann")};
    EXPECT_EQ(reader.values(72, 0), name);
    EXPECT_EQ(reader.values(72, 1), Values{Small_reader::token(u"o'brien")});
}

TEST_F(Data_set_file, HoldsCustomers) {
    const std::string others = "\xC3\x87"
                               "a\tb\tc\t1\nd\te\tf\t2\n";
    const std::string third = "\xC2\xA0Zo\xC3\xAB \tx\tLIE\xCC\x80GE\t9167-1928 0382-4383\r\n";
    const Small_reader reader(
        build(others + third, "FirstName,Simple;Surname,SimpleNC;City,SimpleNC;CardNum,CCNUMBER",
              {"Surname", "CardNum"}));
    ASSERT_EQ(reader.tables().size(), 2U);
    ASSERT_EQ(reader.records().size(), 3U);
    const std::uint64_t offset = reader.records()[2];
    EXPECT_EQ(reader.values(offset, 0), Values{Small_reader::token(u"Zo\u00EB")});
    EXPECT_EQ(reader.values(offset, 2), Values{Small_reader::token(u"li\u00E8ge")});
    EXPECT_EQ(reader.values(offset, 3), Values{Small_reader::token(u"9167192803824383")});
}

TEST_F(Data_set_file, MayBeWithoutRecords) {
    for (const std::string schema : {"A,Simple;B,SimpleNC", "A,Simple;B,Nobody"}) {
        const Small_reader reader(build("", schema, {"B", "A"}));
        EXPECT_EQ(reader.records().size(), 0U);
        EXPECT_EQ(reader.tables().at(1).name, "A");
        EXPECT_EQ(reader.fields().at(1).type, schema.ends_with("Nobody") ? "" : "SimpleNC");
    }
}

TEST_F(Data_set_file, NeedsNoPaddingOnAMultipleOfEight) {
    const std::string file = build("a\nb\nc\nd\ne\nf\ng\nh\n", "Surname,Simple", {"Surname"});
    EXPECT_EQ(file.size(), 32U + 16 + 8 * 11 + 8 + 8 * 16);
    EXPECT_EQ(Small_reader(file).records().at(0), 48U);
}

TEST_F(Data_set_file, LeavesOutNeighbouringDuplicatesOnly) {
    const std::string schema = "First,Simple;Last,SimpleNC";
    const std::string a = "Ann\tLee\n";
    const std::string b = "Bob\tLee\n";
    const Small_reader near(build(a + a + b + a + b + b, schema, {"Last", "First"}, true));
    EXPECT_EQ(near.records().size(), 6U);
    EXPECT_EQ(near.tables().at(0).pairs.size(), 4U) << "A, B, A and B of A A B A B B";
    EXPECT_EQ(near.tables().at(1).pairs.size(), 2U);
    const Small_reader apart(build(a + b + a, schema, {"Last"}));
    EXPECT_EQ(apart.tables().at(0).pairs.size(), 3U);
}

TEST_F(Data_set_file, KeysWithoutTokensHaveHashZero) {
    const Small_reader reader(
        build("--\tx\n-\ty\n--\tx\n1\tx\n--\ty\n", "Card,CCNUMBER;Name,Simple", {"Card"}));
    const auto& pairs = reader.tables().at(0).pairs;
    ASSERT_EQ(pairs.size(), 5U);
    EXPECT_TRUE(pairs[3].first == 0 && pairs[4].first != 0);
}

TEST_F(Data_set_file, HoldsTheLinesOfALargeInput) {
    std::string lines;
    for (int line = 0; line < 20000; ++line) {
        lines += "Zo\xC3\xAB" + std::to_string(line) + "\t" + std::to_string(line % 1009) + "-\n";
    }
    const Small_reader reader(build(lines, "First,SimpleNC;Card,CCNUMBER", {"Card", "First"}));
    ASSERT_EQ(reader.records().size(), 20000U);
    for (std::size_t line = 0; line < 20000; ++line) {
        const std::uint64_t record = reader.records()[line];
        ASSERT_EQ(reader.values(record, 0),
                  Values{Small_reader::token(u"zo\u00EB" + digits(line))});
        ASSERT_EQ(reader.values(record, 1), Values{Small_reader::token(digits(line % 1009))});
    }
}

} // namespace
