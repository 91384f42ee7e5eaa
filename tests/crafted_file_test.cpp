#include "data_set_files.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/scl_heap_buffer.hpp"
#include "tla/upgrade_data_set.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

// Files in which anything may be wrong but the checksum.

namespace {

using test::Rows;
using test::sealed;
using Codes = std::set<scl::Scl_status_code>;

const std::string SCHEMA = "Name,SimpleNC;Card,CCNUMBER";
const Rows ROWS = {{"Ann Lee", "4111-1111"}, {"Bo", ""}, {"Ann Lee", "42"}};
constexpr std::size_t KEY_COUNT_PLACE = 26;
constexpr std::size_t RECORD_COUNT_PLACE = 28;

const Codes LOAD_CODES = {0, tla::TLA_STATUS_NO_DATA_SET, tla::TLA_STATUS_FIELD_LIST,
                          tla::TLA_STATUS_TOO_MANY_PAIRS, scl::SCL_STATUS_END_OF_DATA};
const Codes ENTRY_CODES = {0, tla::TLA_STATUS_RECORD_END, tla::TLA_STATUS_VALUE_COUNT,
                           scl::SCL_STATUS_END_OF_DATA};

Codes both(Codes first, const Codes& second) {
    first.insert(second.begin(), second.end());
    return first;
}
const Codes FIND_CODES =
    both(ENTRY_CODES, {tla::TLA_STATUS_NO_TOKENS, tla::TLA_STATUS_NO_DATA_SET});
const Codes UPGRADE_CODES =
    both(both(LOAD_CODES, ENTRY_CODES),
         {tla::TLA_STATUS_NO_TEXT, tla::TLA_STATUS_KEY_NAME, tla::TLA_STATUS_DUPLICATE_LEFT_OUT});

scl::Scl_status_code upgrade(std::string_view file, scl::Scl_status& status) {
    const test::Workplace place;
    place.write("old", file);
    scl::Scl_heap_buffer output;
    tla::upgrade_data_set(place.path("old").string(), output, status);
    return status.value();
}

// Every step must end with a code that it promises.
void read_entries(test::Connected& connected, std::size_t most) {
    connected.status.clear();
    const auto offsets = connected.connector.record_offsets(connected.status);
    EXPECT_LE(offsets.size(), most);
    for (const std::int64_t offset : offsets) {
        connected.status.clear();
        const bool is_there = connected.entry(offset) != nullptr;
        EXPECT_NE(is_there, connected.status.has_failed());
        EXPECT_TRUE(ENTRY_CODES.contains(connected.status.value()));
    }
}

void look_up(test::Connected& connected, const std::string& key) {
    connected.status.clear();
    (void)connected.find(key, u"Ann Lee", tools::fnv1a("Ann Lee"));
    EXPECT_TRUE(FIND_CODES.contains(connected.status.value()));
}

// Does all that can be done with a file.
void expect_promised_codes(const std::string& bytes) {
    const std::string file = bytes.size() > 16 ? sealed(bytes) : bytes;
    test::Connected connected(file);
    EXPECT_TRUE(LOAD_CODES.contains(connected.load()));
    read_entries(connected, file.size() / 16);
    look_up(connected, "Name");
    look_up(connected, "Card");
    scl::Scl_status status;
    EXPECT_TRUE(UPGRADE_CODES.contains(upgrade(file, status))) << std::hex << status.value();
}

class Crafted_file : public testing::TestWithParam<int> {
protected:
    const std::string file = GetParam() == 1 ? test::version1(SCHEMA, {"Name", "Card"}, ROWS)
                                             : test::version2(SCHEMA, {"Name", "Card"}, ROWS);
};
INSTANTIATE_TEST_SUITE_P(Version, Crafted_file, testing::Values(1, 2));

TEST_P(Crafted_file, AnyByteMayBeWrong) {
    for (std::size_t i = 0; i < file.size(); ++i) {
        for (const char wrong : {'\0', '\n', '\xff'}) {
            std::string crafted = file;
            crafted[i] = wrong;
            SCOPED_TRACE(i);
            expect_promised_codes(crafted);
        }
    }
}

TEST_P(Crafted_file, MayEndAnywhere) {
    for (std::size_t size = 0; size < file.size(); ++size) {
        SCOPED_TRACE(size);
        expect_promised_codes(file.substr(0, size));
    }
}

TEST_P(Crafted_file, AnyNumberMayBeAnother) {
    for (std::size_t place = 16; place + 8 <= file.size(); ++place) {
        for (const std::uint64_t number :
             {~std::uint64_t{0}, ~std::uint64_t{0} >> 1, std::uint64_t{file.size()}}) {
            std::string crafted = file;
            test::put(crafted, place, number);
            SCOPED_TRACE(place);
            expect_promised_codes(crafted);
        }
    }
}

TEST(Crafted_counts, OfPairsAreThoseOfTheFile) {
    std::string file = test::version2(SCHEMA, {"Name"}, ROWS);
    test::put(file, RECORD_COUNT_PLACE, std::uint32_t{4000}); // all in one block
    test::Connected connected(sealed(file));
    EXPECT_EQ(connected.load(), 0U);
    EXPECT_EQ(connected.connector.record_offsets(connected.status).size(), ROWS.size());
    EXPECT_EQ(connected.find("Name", u"ann lee").size(), 2);
    EXPECT_EQ(connected.status.value(), 0U);
}

// A record of 1 MiB, and as many key tables for it as a file can have: a table takes 24 bytes.
TEST(Crafted_counts, OfKeysCostNoMoreThanTheFile) {
    constexpr std::uint16_t KEYS = 65535;
    std::string file = test::version1("K,Simple", {"K"}, {{std::string(1 << 20, '-')}});
    const std::string table = file.substr(test::key_tables_of(file));
    const std::string next = "K" + std::string(7, '\0') + table.substr(table.size() - 16);
    for (int i = 1; i < KEYS; ++i) {
        file += next;
    }
    test::put(file, KEY_COUNT_PLACE, KEYS);
    scl::Scl_status status;
    EXPECT_EQ(upgrade(sealed(file), status), tla::TLA_STATUS_NO_DATA_SET);
    EXPECT_TRUE(test::argument_of(status).ends_with("old"));
}

TEST(Crafted_names, DoNotReachTheTerminal) {
    std::string file = test::version1(SCHEMA, {"Name"}, ROWS);
    file.replace(test::key_tables_of(file), 4, "\x1b[2J");
    const test::Workplace place;
    place.write("old", sealed(file));
    const test::Outcome outcome = place.run({"-u", "-i", "old", "-o", "out"});
    EXPECT_EQ(outcome.exit_status, 255);
    EXPECT_EQ(outcome.err.find('\x1b'), outcome.err.npos);
    EXPECT_NE(outcome.err.find("\\x1B[2J"), outcome.err.npos) << outcome.err;
    EXPECT_FALSE(place.exists("out"));
}

} // namespace
