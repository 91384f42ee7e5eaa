#include "program.hpp"
#include "small_reader.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

namespace {

using test::Outcome;
using test::Small_reader;
using test::Workplace;
using Values = Small_reader::Values;

std::string read_file(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class Data_set_file : public testing::Test {
protected:
    // Builds the lines and returns the file.
    std::string build(const std::string& lines, const std::string& schema,
                      const std::vector<std::string>& keys, std::string_view warning = "") {
        place.write("in", lines);
        place.remove("out");
        const Outcome outcome = place.run(test::build_arguments(schema, keys));
        EXPECT_EQ(outcome.exit_status, 0);
        EXPECT_TRUE(outcome.err.starts_with(warning)) << outcome.err;
        EXPECT_EQ(outcome.err.empty(), warning.empty()) << outcome.err;
        return place.read("out");
    }

    Workplace place;
};

// The example of docs/file-format.md, taken from the document itself.
class Worked_example {
public:
    Worked_example() : text_(read_file(DSMAKE_FILE_FORMAT)) {
        text_.erase(0, text_.find("## A worked example"));
        std::istringstream lines(text_.substr(text_.find("```") + 3));
        std::string line;
        while (std::getline(lines, line) && line != "```") {
            std::istringstream words(line);
            std::string word;
            words >> word; // the offset
            while (words >> word) {
                bytes += static_cast<char>(std::stoi(word, nullptr, 16));
            }
        }
        const std::string first_field = quoted();
        input = first_field + '\t' + quoted() + '\n';
        schema = quoted();
        key = quoted();
    }

    std::string input;
    std::string schema;
    std::string key;
    std::string bytes;

private:
    std::string quoted() {
        const std::size_t start = text_.find('`', at_) + 1;
        const std::size_t end = text_.find('`', start);
        at_ = end + 1;
        return text_.substr(start, end - start);
    }

    std::string text_;
    std::size_t at_ = 0;
};

TEST_F(Data_set_file, IsTheDocumentsWorkedExample) {
    const Worked_example example;
    EXPECT_EQ(example.bytes.size(), 128U);
    EXPECT_EQ(build(example.input, example.schema, {example.key}), example.bytes);
    const Small_reader reader(example.bytes);
    const Values name = {Small_reader::token(u"Mary"), Small_reader::token(u"Ann")};
    EXPECT_EQ(reader.values(reader.records().at(0), 0), name);
    EXPECT_EQ(reader.find("Surname", {Small_reader::token(u"o'brien")}), Values{72});
}

// Shows that the reader checks: with the checksum made right again, each changed byte is noticed,
// but for those whose content nothing else in the file depends on.
TEST(Small_reader_test, NoticesEachChangedByte) {
    const std::string good = Worked_example().bytes;
    EXPECT_EQ(Small_reader::crc("123456789"), 0x995DC9BBDF1939FAU);
    for (std::size_t at = 0; at < good.size(); ++at) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 0x40);
        EXPECT_THROW(Small_reader{bad}, std::runtime_error) << at;
        const std::uint64_t checksum = ~Small_reader::crc(std::string_view(bad).substr(16));
        for (unsigned byte = 0; byte < 8 && (at < 8 || at > 15); ++byte) {
            bad[8 + byte] = static_cast<char>(checksum >> (8 * byte));
        }
        const bool first_name = at >= 32 && at < 41;
        const bool first_values = at >= 74 && at < 90;
        if (first_name || first_values) {
            EXPECT_NO_THROW(Small_reader{bad}) << at;
        } else {
            EXPECT_THROW(Small_reader{bad}, std::runtime_error) << at;
        }
    }
    for (std::size_t size = 0; size < good.size(); ++size) {
        EXPECT_THROW(Small_reader{good.substr(0, size)}, std::runtime_error);
    }
}

TEST_F(Data_set_file, HoldsTheExampleCustomers) {
    const std::string lines = read_file(DSMAKE_EXAMPLES "/customers.tsv");
    const Small_reader reader(
        build(lines, "FirstName,Simple;Surname,SimpleNC;City,SimpleNC;CardNum,CCNUMBER",
              {"Surname", "CardNum"}));
    ASSERT_EQ(reader.tables().size(), 2U);
    EXPECT_EQ(reader.tables()[0].name, "Surname");
    EXPECT_EQ(reader.tables()[1].name, "CardNum");
    ASSERT_EQ(reader.records().size(), 360U);

    const Values seventh = {reader.records()[2]};
    EXPECT_EQ(reader.find("CardNum", {Small_reader::token(u"9167192803824383")}), seventh);
    EXPECT_EQ(reader.find("CardNum", {Small_reader::token(u"9167-1928-0382-4383")}), Values{});
    EXPECT_EQ(reader.values(seventh[0], 0), Values{Small_reader::token(u"Zo\u00EB")});
    EXPECT_EQ(reader.values(seventh[0], 2), Values{Small_reader::token(u"li\u00E8ge")});
}

TEST_F(Data_set_file, MayBeWithoutRecords) {
    for (const std::string schema : {"A,Simple;B,SimpleNC", "A,Simple;B,Nobody"}) {
        const Small_reader reader(build("", schema, {"B", "A"}));
        EXPECT_EQ(reader.records().size(), 0U);
        EXPECT_EQ(reader.tables().at(1).name, "A");
        EXPECT_EQ(reader.tables().at(1).pairs.size(), 0U);
        EXPECT_EQ(reader.fields().at(1).type, schema.ends_with("Nobody") ? "" : "SimpleNC");
    }
}

TEST_F(Data_set_file, NeedsNoPaddingOnAMultipleOfEight) {
    std::string lines;
    for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
        lines += std::string(name) + '\n';
    }
    const std::string file = build(lines, "Surname,Simple", {"Surname"});
    EXPECT_EQ(file.size(), 32U + 16 + 8 * 11 + 8 + 8 * 16);
    EXPECT_EQ(Small_reader(file).records().at(0), 48U);
    EXPECT_EQ(Small_reader(build("a\n", "Surname,Simple", {"Surname"})).records().size(), 1U);
}

TEST_F(Data_set_file, LeavesOutNeighbouringDuplicatesOnly) {
    const std::string schema = "First,Simple;Last,SimpleNC";
    const std::string a = "Ann\tLee\n";
    const std::string b = "Bob\tLee\n";
    const Small_reader near(build(a + a + b + a + b + b, schema, {"Last", "First"}, "Warnings:"));
    EXPECT_EQ(near.records().size(), 6U);
    EXPECT_EQ(near.tables().at(0).pairs.size(), 4U) << "A, B, A and B of A A B A B B";
    EXPECT_EQ(near.tables().at(1).pairs.size(), 2U);
    EXPECT_EQ(near.find("Last", {Small_reader::token(u"lee")}).size(), 4U);

    const Small_reader apart(build(a + b + a, schema, {"Last"}));
    EXPECT_EQ(apart.find("Last", {Small_reader::token(u"lee")}), apart.records());
}

TEST_F(Data_set_file, KeysWithoutTokensHaveHashZero) {
    const Small_reader reader(
        build("--\tx\n-\ty\n--\tx\n1\tx\n--\ty\n", "Card,CCNUMBER;Name,Simple", {"Card"}));
    EXPECT_EQ(reader.find("Card", {}).size(), 4U);
    EXPECT_EQ(reader.tables().at(0).pairs.at(0).hash, 0U);
}

TEST_F(Data_set_file, FindsTheLinesOfALargeInput) {
    constexpr std::size_t LINES = 20000;
    constexpr std::size_t SURNAMES = 1009;
    std::string lines;
    for (std::size_t line = 0; line < LINES; ++line) {
        lines += "Given" + std::to_string(line) + "\tNAME" + std::to_string(line % SURNAMES) + '\n';
    }
    const Small_reader reader(build(lines, "First,Simple;Last,SimpleNC", {"Last", "First"}));
    std::map<Values, Values> lines_of;
    for (const std::uint64_t record : reader.records()) {
        lines_of[reader.values(record, 1)].push_back(record);
    }
    ASSERT_EQ(lines_of.size(), SURNAMES);
    for (const auto& [surname, expected] : lines_of) {
        EXPECT_EQ(reader.find("Last", surname), expected);
    }
    const Values last = {reader.records().at(LINES - 1)};
    EXPECT_EQ(reader.find("First", {Small_reader::token(u"Given19999")}), last);
    const Values shared = reader.find("Last", {Small_reader::token(u"name828")});
    EXPECT_EQ(shared.size(), 20U);
    EXPECT_EQ(shared.back(), last[0]);
}

} // namespace
