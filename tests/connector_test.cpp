#include "data_set_files.hpp"
#include "records/tla_simplenc_formatter.hpp"
#include "records/tla_status_codes.hpp"
#include "tla/index_block_size.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace std::string_literals;
using test::Connected;
using test::sealed;

const std::string SCHEMA = "Name,Simple;City,SimpleNC";
constexpr std::size_t LIST = 32;

test::Rows numbered_rows(int count) {
    test::Rows rows;
    for (int i = 0; i < count; ++i) {
        rows.push_back({"n" + std::to_string(i), "c" + std::to_string(i % 7)});
    }
    return rows;
}

std::string small_file() {
    return test::version2(SCHEMA, {"Name", "City"}, numbered_rows(3));
}

// The file with this field list; the records begin where they began.
std::string with_list(std::string_view list) {
    std::string file = small_file();
    file.replace(LIST, list.size(), list);
    return sealed(file);
}

TEST(Connector, AFileCutShortAnywhereIsRefused) {
    const std::string file = small_file();
    const std::size_t list_end = file.find("\0\0"s, LIST) + 2;
    for (std::size_t size = 0; size < file.size(); ++size) {
        Connected cut(file.substr(0, size));
        const bool in_header = size < list_end;
        EXPECT_EQ(cut.load(), in_header ? tla::TLA_STATUS_NO_DATA_SET : tla::TLA_STATUS_CHECKSUM)
            << size;
        EXPECT_EQ(cut.status.entries().size(), 1);
        EXPECT_EQ(test::argument_of(cut.status), in_header ? cut.path() : "");
    }
}

TEST(Connector, AnyChangedByteIsNoticed) {
    const std::string file = small_file();
    for (std::size_t i = 0; i < file.size(); ++i) {
        std::string changed = file;
        changed[i] = static_cast<char>(changed[i] ^ 0x20);
        Connected damaged(changed);
        EXPECT_TRUE(scl::scl_is_error(damaged.load())) << i;
        const bool in_magic = i < 8;
        if (in_magic || i >= test::key_tables_of(file)) {
            EXPECT_EQ(damaged.status.value(),
                      in_magic ? tla::TLA_STATUS_NO_DATA_SET : tla::TLA_STATUS_CHECKSUM);
        }
        EXPECT_EQ(damaged.status.entries().size(), 1);
    }
}

TEST(Connector, OnlyTheFirstVersionByteCounts) {
    std::string file = small_file();
    file[25] = '\x77';
    EXPECT_EQ(Connected(sealed(file)).load(false), 0U);
    file[24] = 1;
    Connected old(sealed(file));
    EXPECT_EQ(old.load(false), tla::TLA_STATUS_VERSION);
    EXPECT_EQ(test::argument_of(old.status), old.path());
    EXPECT_EQ(Connected(sealed(file)).load(true), 0U);
}

TEST(Connector, ReadsTheFieldList) {
    Connected file(with_list("drop\nAb\nsimplenc\0\nNo type\0\0"s));
    EXPECT_EQ(file.load(), 0U);
    const auto& fields = file.connector.field_descriptors();
    ASSERT_EQ(fields.size(), 2);
    EXPECT_EQ(fields[0].name, u"Ab");
    EXPECT_EQ(fields[0].type, tla::Tla_simplenc_formatter::TYPE_ID);
    EXPECT_EQ(fields[1].name, u"");
    EXPECT_EQ(fields[1].type, tla::Formatter_type_id{});
    // Two empty names end the list.
    Connected ended(with_list("A\nSimple\0\n\0B\nSimple\0\0"s));
    EXPECT_EQ(ended.load(), 0U);
    EXPECT_EQ(ended.connector.field_descriptors().size(), 1);
}

TEST(Connector, RefusesAMalformedFieldList) {
    for (const std::string& list : {"\0"s, "Ab\0"s, "A\nSimple\0B\0\0"s}) {
        Connected file(with_list(list));
        EXPECT_EQ(file.load(), tla::TLA_STATUS_FIELD_LIST);
        EXPECT_EQ(test::argument_of(file.status), "");
    }
}

TEST(Connector, OpensOnlyFiles) {
    Connected file(small_file());
    scl::Scl_status status;
    tla::Tla_data_set_connector_file connector;
    connector.set_parameter("DataFile", test::wide(file.path()), status);
    for (const std::u16string name : {u"/no such file", u"/tmp", u""}) {
        connector.set_parameter("DATAFILENAME", name, status);
        connector.open(status);
        EXPECT_EQ(status.value(), tla::TLA_STATUS_NOT_OPEN);
        EXPECT_EQ(status.entries().size(), 1);
        status.clear();
    }
    connector.load(status, true);
    EXPECT_EQ(status.value(), tla::TLA_STATUS_NOT_OPEN);
}

TEST(Connector, ClosedAnswersNothing) {
    Connected file(small_file());
    ASSERT_EQ(file.load(), 0U);
    const std::int64_t offset = file.connector.record_offsets(file.status).front();
    file.connector.close();
    EXPECT_EQ(file.entry(offset), nullptr);
    EXPECT_EQ(file.status.value(), tla::TLA_STATUS_NOT_OPEN);
    file.status.clear();
    EXPECT_TRUE(file.find("Name", u"n1").empty());
    EXPECT_EQ(file.status.value(), tla::TLA_STATUS_NOT_OPEN);
    EXPECT_TRUE(file.connector.field_descriptors().empty());
    file.status = scl::SCL_STATUS_NO_MEMORY;
    EXPECT_EQ(file.connector.record_offsets(file.status).size(), 3); // those of before
    EXPECT_EQ(file.status.value(), tla::TLA_STATUS_NOT_OPEN);
}

TEST(Connector, BlockSizesFollowTheNumberOfPairs) {
    struct Limit {
        std::uint32_t pairs; // the most in blocks of this size
        std::size_t size;
    };
    for (const auto& [pairs, size] :
         {Limit{0x4000FFF, 4096}, {0x8001FFF, 8192}, {0xC002FFF, 12288}, {0x20003FFF, 16384}}) {
        EXPECT_EQ(tla::index_block_size(pairs, 1), size);
        EXPECT_EQ(tla::index_block_size(pairs + 1, 1), size == 16384 ? 0 : size + 4096);
    }
    EXPECT_EQ(tla::index_block_size(0x10002000, 2), 0);
    EXPECT_EQ(tla::index_block_size(0x80000001, 2), 4096); // wraps
}

TEST(Connector, ListsEveryRecordInTheOrderOfTheFirstKey) {
    constexpr int COUNT = 9000; // three blocks
    Connected file(test::version2(SCHEMA, {"Name", "City"}, numbered_rows(COUNT)));
    ASSERT_EQ(file.load(), 0U);
    EXPECT_EQ(file.connector.key_names(), (std::vector<std::u16string>{u"Name", u"City"}));
    std::vector<std::int64_t> offsets = file.connector.record_offsets(file.status);
    ASSERT_EQ(offsets.size(), COUNT);
    EXPECT_FALSE(std::ranges::is_sorted(offsets));
    std::ranges::sort(offsets);
    for (std::size_t i = 0; i + 1 < COUNT; ++i) {
        const auto entry = file.entry(offsets[i]);
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(offsets[i] + static_cast<std::int64_t>(entry->record_size()), offsets[i + 1]);
    }
    file.load(); // nothing is indexed twice
    EXPECT_EQ(file.connector.key_names().size(), 2);
    EXPECT_EQ(file.connector.record_offsets(file.status).size(), 2 * COUNT);
}

TEST(Connector, AFileWithoutRecordsHasKeysOnly) {
    Connected file(test::version2(SCHEMA, {"City"}, {}));
    ASSERT_EQ(file.load(), 0U);
    EXPECT_EQ(file.connector.key_names(), std::vector<std::u16string>{u"City"});
    EXPECT_TRUE(file.find("City", u"x").empty());
    EXPECT_EQ(file.status.value(), 0U);
}

TEST(Connector, ATableWithoutItsDuplicatesListsWhatItHas) {
    const test::Rows rows = {{"a", "x"}, {"b", "x"}, {"a", "x"}};
    Connected one_key(test::version2(SCHEMA, {"Name"}, rows));
    ASSERT_EQ(one_key.load(), 0U);
    EXPECT_EQ(one_key.connector.record_offsets(one_key.status).size(), 2);
    EXPECT_EQ(one_key.find("Name", u"a").size(), 1);
    EXPECT_EQ(one_key.status.value(), 0U);
    // The next table is looked for where this one would end if it had all pairs.
    Connected two_keys(test::version2(SCHEMA, {"Name", "City"}, rows));
    EXPECT_EQ(two_keys.load(), 0U);
    EXPECT_NE(two_keys.connector.key_names()[1], u"City");
    EXPECT_TRUE(two_keys.find("City", u"x").empty());
}

TEST(Connector, ClaimsBeyondTheFileEndQuickly) {
    std::string file = small_file();
    for (const std::uint32_t count : {0x20003FFFU, 0x40000000U, 0x80000000U, 0xFFFFFFFFU}) {
        test::put(file, 28, count);
        const bool too_many = tla::index_block_size(count, 2) == 0;
        EXPECT_EQ(Connected(sealed(file)).load(),
                  too_many ? tla::TLA_STATUS_TOO_MANY_PAIRS : scl::SCL_STATUS_END_OF_DATA);
    }
    for (const std::uint64_t offset :
         {file.size() + 0, file.size() + 1, std::size_t{1} << 63, ~std::size_t{0}}) {
        test::put(file, 28, std::uint32_t{3});
        test::put(file, 16, offset);
        EXPECT_EQ(Connected(sealed(file)).load(), scl::SCL_STATUS_END_OF_DATA);
    }
}

TEST(Connector, AnyKeyTableOffsetIsSafe) {
    std::string file = small_file();
    for (std::size_t offset = 0; offset <= file.size(); ++offset) {
        test::put(file, 16, std::uint64_t{offset});
        Connected odd(sealed(file));
        odd.load();
        for (const std::int64_t record : odd.connector.record_offsets(odd.status)) {
            odd.status.clear();
            const auto entry = odd.entry(record);
            EXPECT_EQ(entry == nullptr, odd.status.has_failed());
        }
    }
}

} // namespace
