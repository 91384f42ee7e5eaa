#include "data_set_files.hpp"
#include "records/values/tla_status_codes.hpp"

namespace {

using test::Rows;
using test::sealed;

const std::string SCHEMA = "Name,SimpleNC;City,Simple;Card,CCNUMBER";
const test::Keys KEYS = {"Card", "Name"};
constexpr std::size_t VERSION_PLACE = 24;
constexpr std::size_t RECORD_COUNT_PLACE = 28;

const Rows ROWS = {{"  Zo\xc3\xab ", "New  York", "4111-1111"},
                   {"", "", ""},
                   {"b\xff", "\xef\xbb\xbf x", "--"},
                   {"ZOE\xcc\x88", " ", "41 111111"},
                   {"a,b;c", "\r", "x"}};

std::string upgraded(std::string_view file) {
    scl::Scl_status status;
    std::string result = test::upgraded(file, status);
    EXPECT_TRUE(status.entries().empty());
    return result;
}

scl::Scl_status_code failure(std::string_view file, std::string_view argument = "") {
    scl::Scl_status status;
    EXPECT_EQ(test::upgraded(file, status), "");
    EXPECT_TRUE(test::argument_of(status).ends_with(argument));
    return status.value();
}

TEST(Upgrade, GivesTheFileThatTheSameTextsBuild) {
    EXPECT_EQ(upgraded(test::version1(SCHEMA, KEYS, ROWS)), test::version2(SCHEMA, KEYS, ROWS));
    EXPECT_EQ(upgraded(test::version1(SCHEMA, KEYS, {})), test::version2(SCHEMA, KEYS, {}));
}

TEST(Upgrade, WarnsOfRecordsThatItDoesNotFindOrCannotTellApart) {
    const auto expect_warning = [](const std::string& file, const Rows& left,
                                   std::string_view numbers, const test::Keys& keys) {
        scl::Scl_status status;
        EXPECT_EQ(test::upgraded(file, status), test::version2(SCHEMA, keys, left));
        ASSERT_EQ(status.value(), tla::TLA_STATUS_RECORDS_LOST);
        EXPECT_EQ(test::argument_of(status), numbers);
    };
    expect_warning(test::version1(SCHEMA, {}, ROWS), {}, "0 of 5", {});
    std::string claims_more = test::version1(SCHEMA, {"Name"}, ROWS);
    for (const std::uint32_t claimed : {6U, 9000U}) { // in the same block and in further ones
        test::put(claims_more, RECORD_COUNT_PLACE, claimed);
        expect_warning(sealed(claims_more), ROWS, "5 of " + std::to_string(claimed), {"Name"});
    }
    scl::Scl_status status; // its count wraps to 0, and the first value is no end of a record
    (void)test::upgraded(test::version1("A,Simple;B,Simple;C,Simple", {"A"},
                                        {{"a", "b", "c"}, {std::string(65536, '!'), "b", "c"}}),
                         status);
    ASSERT_EQ(status.value(), tla::TLA_STATUS_RECORDS_LOST);
    EXPECT_EQ(test::argument_of(status), "1 of 2");
    ASSERT_EQ(status.entries().size(), 2);
    EXPECT_EQ(status.entries()[0].code, tla::TLA_STATUS_COUNT_WRAPPED);
    EXPECT_EQ(status.entries()[0].argument->text(), u"1, the first is 2");
}

TEST(Upgrade, KeepsTheOrderOfTheRecordsWhateverTheirHashes) {
    Rows rows;
    for (int i = 0; i < 9000; ++i) {
        rows.push_back({"name " + std::to_string(i * 7919 % 9000), "x", std::to_string(i)});
    }
    const auto by_length = [](std::string_view text) { return 99 - text.size(); };
    EXPECT_EQ(upgraded(test::version1(SCHEMA, KEYS, rows, by_length)),
              test::version2(SCHEMA, KEYS, rows));
}

TEST(Upgrade, LeavesTheLatestVersionAloneAndNeedsTexts) {
    std::string file = test::version2(SCHEMA, KEYS, {{"a", "b", "c"}});
    EXPECT_EQ(upgraded(file), "");
    file[VERSION_PLACE] = 3;
    EXPECT_EQ(upgraded(sealed(file)), "");
    file[VERSION_PLACE] = 0;
    EXPECT_EQ(failure(sealed(file), "Name"), tla::TLA_STATUS_NO_TEXT);
}

TEST(Upgrade, RefusesRecordsThatAreDamaged) {
    const std::string file = test::version1(SCHEMA, KEYS, ROWS);
    const std::size_t pairs = test::pairs_of_first_key(file);
    std::string damaged = file;
    for (const std::uint64_t offset : {test::key_tables_of(file) - 1, ~std::uint64_t{0}}) {
        test::put(damaged, pairs + 8, offset);
        EXPECT_EQ(failure(sealed(damaged)), tla::TLA_STATUS_VALUE_COUNT);
    }
    EXPECT_EQ(failure(file + "x"), tla::TLA_STATUS_CHECKSUM);
    // Equal names are refused before the first record is looked at: there may be millions of them.
    std::string alike = test::version1("A,Simple;A,Simple", {"A"}, {{"a", "b"}});
    test::put(alike, test::pairs_of_first_key(alike) + 8, ~std::uint64_t{0});
    EXPECT_EQ(failure(sealed(alike)), tla::TLA_STATUS_FIELD_LIST);
    EXPECT_EQ(failure(test::version1("A,Simple;B,What", {"A"}, {{"a", "b"}, {"c", "d"}})),
              scl::SCL_STATUS_END_OF_DATA); // as in a build with such a schema
}

TEST(Upgrade, RefusesRecordsThatAreTogetherLongerThanTheirFile) {
    Rows rows(50, {"a", "b", "c"});
    rows.front()[1] = std::string(10000, 'x');
    std::string file = test::version1(SCHEMA, {"Name"}, rows);
    test::share_first_record(file);
    EXPECT_EQ(failure(sealed(file), "old"), tla::TLA_STATUS_NO_DATA_SET);
}

TEST(Upgrade_command, WritesAFileOrRemovesIt) {
    const test::Workplace place;
    const auto upgrade = [&place](std::string_view file) {
        place.write("in", file);
        place.remove("out");
        return place.run({"-u", "-i", "in", "-o", "out"});
    };
    const auto expect_refused = [&](std::string_view file, std::string_view message) {
        const test::Outcome refused = upgrade(file);
        EXPECT_EQ(refused.exit_status, 255);
        EXPECT_TRUE(refused.err.starts_with(message)) << refused.err;
        EXPECT_FALSE(place.exists("out"));
    };
    EXPECT_EQ(upgrade(test::version1(SCHEMA, KEYS, ROWS)).exit_status, 0);
    EXPECT_EQ(place.read("out"), test::version2(SCHEMA, KEYS, ROWS));
    const test::Outcome warned = upgrade(test::version1(SCHEMA, {}, ROWS));
    EXPECT_EQ(warned.exit_status, 0);
    EXPECT_TRUE(warned.err.starts_with("0x8201252A: Records that can be read: 0 of 5 lines. "));
    expect_refused("KQZVDaSe and no more", "0xC2012521: 'in' is no data set file, or it is cut "
                                           "short. Check the name, or build the file again.");
    EXPECT_FALSE(place.exists("mid_buf"));
    std::filesystem::create_directory(place.path("mid_buf"));
    expect_refused(test::version1(SCHEMA, KEYS, ROWS),
                   "0xC2000011: The file cannot be created: mid_buf");
}

} // namespace
