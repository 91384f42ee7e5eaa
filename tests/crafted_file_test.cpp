#include "data_set_files.hpp"
#include "records/values/tla_status_codes.hpp"

#include <algorithm>
#include <set>

// Files in which anything may be wrong but the checksum.

namespace {

using test::Rows;
using test::sealed;
using Codes = std::set<scl::Scl_status_code>;

const std::string SCHEMA = "Name,SimpleNC;Card,CCNUMBER";
const Rows ROWS = {{"Ann Lee", "4111-1111"}, {"Bo", ""}, {"Ann Lee", "42"}};
constexpr std::size_t KEY_TABLES_PLACE = 16;
constexpr std::size_t KEY_COUNT_PLACE = 26;
constexpr std::size_t RECORD_COUNT_PLACE = 28;

const Codes LOAD_CODES = {0, tla::TLA_STATUS_NO_DATA_SET, tla::TLA_STATUS_FIELD_LIST,
                          tla::TLA_STATUS_TOO_MANY_PAIRS, scl::SCL_STATUS_END_OF_DATA};
const Codes ENTRY_CODES = {0, tla::TLA_STATUS_RECORD_END, tla::TLA_STATUS_VALUE_COUNT,
                           scl::SCL_STATUS_END_OF_DATA};
const Codes FIND_CODES = {tla::TLA_STATUS_NO_TOKENS, tla::TLA_STATUS_NO_DATA_SET};
const Codes UPGRADE_CODES = {tla::TLA_STATUS_NO_TEXT, tla::TLA_STATUS_KEY_NAME,
                             tla::TLA_STATUS_RECORDS_LOST, tla::TLA_STATUS_COUNT_WRAPPED,
                             tla::TLA_STATUS_DUPLICATE_LEFT_OUT};

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
    const scl::Scl_status_code code = connected.status.value();
    EXPECT_TRUE(FIND_CODES.contains(code) || ENTRY_CODES.contains(code));
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
    (void)test::upgraded(file, status);
    const scl::Scl_status_code code = status.value();
    EXPECT_TRUE(LOAD_CODES.contains(code) || ENTRY_CODES.contains(code) ||
                UPGRADE_CODES.contains(code))
        << std::hex << code;
}

class Crafted_file : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Version, Crafted_file, testing::Values(1, 2));

TEST_P(Crafted_file, AnyByteOrNumberMayBeWrongAndAnEndAnywhere) {
    const test::Keys keys = {"Name", "Card"};
    const std::string file =
        GetParam() == 1 ? test::version1(SCHEMA, keys, ROWS) : test::version2(SCHEMA, keys, ROWS);
    for (std::size_t place = 0; place < file.size(); ++place) {
        SCOPED_TRACE(place);
        expect_promised_codes(file.substr(0, place));
        for (const char wrong : {'\0', '\n', '\xff'}) {
            std::string crafted = file;
            crafted[place] = wrong;
            expect_promised_codes(crafted);
        }
        for (const std::uint64_t number :
             {~std::uint64_t{0}, ~std::uint64_t{0} >> 1, std::uint64_t{file.size()}}) {
            std::string crafted = file;
            if (place < 16 || place + 8 > file.size()) continue;
            test::put(crafted, place, number);
            expect_promised_codes(crafted);
        }
        std::string moved = file; // the key tables
        test::put(moved, KEY_TABLES_PLACE, std::uint64_t{place});
        expect_promised_codes(moved);
    }
}

TEST(Crafted_counts, OfPairsAreThoseOfTheFile) {
    std::string file = test::version2(SCHEMA, {"Name"}, ROWS);
    test::put(file, RECORD_COUNT_PLACE, std::uint32_t{4000}); // all in one block
    test::Loaded connected(sealed(file));
    EXPECT_EQ(connected.connector.record_offsets(connected.status).size(), ROWS.size());
    EXPECT_EQ(connected.find("Name", u"ann lee").size(), 2);
    EXPECT_EQ(connected.status.value(), 0U);
    test::put(file, RECORD_COUNT_PLACE, ~std::uint32_t{0});
    EXPECT_EQ(test::Connected(sealed(file)).load(), tla::TLA_STATUS_TOO_MANY_PAIRS);
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
    EXPECT_EQ(test::upgraded(sealed(file), status), "");
    EXPECT_EQ(status.value(), tla::TLA_STATUS_NO_DATA_SET);
    EXPECT_TRUE(test::argument_of(status).ends_with("old"));
}

} // namespace
