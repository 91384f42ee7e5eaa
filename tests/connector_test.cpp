#include "data_set_files.hpp"
#include "records/values/tla_formatters.hpp"
#include "records/values/tla_status_codes.hpp"
#include "tla/read/keys/key_index.hpp"

#include <algorithm>

namespace {

using namespace std::string_literals;
using test::Connected;
using Offsets = std::vector<std::int64_t>;
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

TEST(Connector, AFileCutShortOrChangedAnywhereIsRefused) {
    const std::string file = small_file();
    const std::size_t list_end = file.find("\0\0"s, LIST) + 2;
    for (std::size_t place = 0; place < file.size(); ++place) {
        SCOPED_TRACE(place);
        Connected cut(file.substr(0, place));
        const bool in_header = place < list_end;
        EXPECT_EQ(cut.load(false),
                  in_header ? tla::TLA_STATUS_NO_DATA_SET : tla::TLA_STATUS_CHECKSUM);
        EXPECT_EQ(cut.status.entries().size(), 1);
        EXPECT_EQ(test::argument_of(cut.status), in_header ? cut.path() : "");
        std::string changed = file;
        changed[place] = static_cast<char>(changed[place] ^ 0x20);
        Connected damaged(changed);
        const scl::Scl_status_code code = damaged.load();
        EXPECT_TRUE(scl::scl_is_error(code));
        EXPECT_TRUE(place >= 8 || code == tla::TLA_STATUS_NO_DATA_SET);
        EXPECT_TRUE(place < test::key_tables_of(file) || code == tla::TLA_STATUS_CHECKSUM);
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
}

TEST(Connector, ReadsTheFieldList) {
    test::Loaded file(with_list("drop\nAb\nsimplenc\0\nNo type\0\0"s));
    const auto& fields = file.connector.field_descriptors();
    ASSERT_EQ(fields.size(), 2);
    EXPECT_EQ(fields[0].name, u"Ab");
    EXPECT_EQ(fields[0].type, tla::Tla_simplenc_formatter::TYPE_ID);
    EXPECT_TRUE(fields[1].name.empty() && fields[1].type == tla::Formatter_type_id{});
    // Two empty names end the list.
    test::Loaded ended(with_list("A\nSimple\0\n\0B\nSimple\0\0"s));
    EXPECT_EQ(ended.connector.field_descriptors().size(), 1);
    for (const std::string& malformed : {"\0"s, "Ab\0"s, "A\nSimple\0B\0\0"s}) {
        Connected refused(with_list(malformed));
        EXPECT_EQ(refused.load(), tla::TLA_STATUS_FIELD_LIST);
        EXPECT_EQ(test::argument_of(refused.status), "");
    }
}

TEST(Connector, OpensOnlyFiles) {
    const test::Workplace place;
    place.write("file", small_file());
    tla::Tla_data_set_connector_file connector;
    const auto code_of_opening = [&connector](std::string_view name, std::string_view value) {
        scl::Scl_status status;
        connector.set_parameter(name, test::wide(value), status);
        connector.open(status);
        EXPECT_EQ(status.entries().size(), status.has_failed() ? 1 : 0);
        return status.value();
    };
    EXPECT_EQ(code_of_opening("FileName", place.path("file").string()), tla::TLA_STATUS_NOT_OPEN);
    for (const std::string& name : {place.path("none").string(), place.path("").string(), ""s}) {
        EXPECT_EQ(code_of_opening("DATAFILENAME", place.path("file").string()), 0U);
        EXPECT_NE(connector.file_size(), 0U);
        EXPECT_EQ(code_of_opening("dataFileName", name), tla::TLA_STATUS_NOT_OPEN);
        EXPECT_EQ(connector.file_size(), 0U);
    }
    scl::Scl_status status;
    connector.load(status, true);
    EXPECT_EQ(status.value(), tla::TLA_STATUS_NOT_OPEN);
}

TEST(Connector, ClosedAnswersNothing) {
    test::Loaded file(small_file());
    const std::int64_t offset = file.connector.record_offsets(file.status).front();
    file.connector.close();
    EXPECT_TRUE(file.connector.field_descriptors().empty());
    const auto expect_not_open = [&file](bool is_right) {
        EXPECT_TRUE(is_right);
        EXPECT_EQ(file.status.value(), tla::TLA_STATUS_NOT_OPEN);
        file.status = scl::SCL_STATUS_NO_MEMORY; // to be replaced
    };
    file.held.close();
    expect_not_open(file.entry(offset) == nullptr);
    expect_not_open(file.find("Name", u"n1").empty());
    expect_not_open(file.connector.record_offsets(file.status).size() == 3); // those of before
}

TEST(Connector, ClosedItForgetsCountsAndThatTheFileWasHeld) {
    test::Loaded file(test::version2("Name,Simple", {"Name"}, {{"a b c"}}));
    EXPECT_EQ(file.held.largest_token_count(0, file.status), 3U);
    file.held.close();
    const test::Workplace place;
    place.write("next", test::version2("Name,Simple", {"Name"}, {{"a b"}}));
    const std::string path = place.path("next");
    file.held.set_parameter("DataFileName", test::wide(path), file.status);
    file.held.open(file.status);
    file.held.load(file.status, false);
    EXPECT_EQ(file.held.largest_token_count(0, file.status), 2U);
    EXPECT_EQ(file.status.value(), 0U);
    std::filesystem::resize_file(path, 16);
    const auto offset = static_cast<std::int64_t>(file.held.data_start());
    EXPECT_EQ(file.held.read_entry(offset, file.status), nullptr);
    EXPECT_EQ(file.status.value(), scl::SCL_STATUS_READ_FAILED);
}

// Otherwise half a file would pass for a whole one.
TEST(Connector, AFileThatBecomesShorterCannotBeRead) {
    const auto expect_failure = [](bool loaded, std::uintmax_t size, auto use) {
        Connected file(test::version2(SCHEMA, {"Name"}, numbered_rows(9000)));
        file.held_is_compared = false;
        if (loaded) file.load();
        std::filesystem::resize_file(file.path(), size);
        use(file);
        EXPECT_EQ(file.status.value(), scl::SCL_STATUS_READ_FAILED);
        EXPECT_TRUE(test::argument_of(file.status).starts_with(file.path() + ": "));
    };
    for (const std::uintmax_t size : {5000U, 100000U}) { // in the first window, and past it
        expect_failure(false, size, [](auto& file) { file.load(); });
        expect_failure(false, size, [](auto& file) { file.held.load(file.status, true); });
    }
    expect_failure(true, 5000,
                   [](auto& file) { (void)file.connector.record_offsets(file.status); });
    expect_failure(true, 5000, [](auto& file) { EXPECT_EQ(file.entry(6000), nullptr); });
    expect_failure(true, 5000, [](auto& file) { EXPECT_TRUE(file.find("Name", u"n1").empty()); });
}

TEST(Connector, HeldInMemoryTheFileIsNeededNoMore) {
    Connected file(test::version2(SCHEMA, {"Name"}, numbered_rows(9000)));
    file.load();
    const Offsets before = file.find_records(0, u"n77");
    const Offsets all = file.connector.record_offsets(file.status);
    std::filesystem::resize_file(file.path(), 5000);
    EXPECT_EQ(file.held.record_offsets(file.status), all);
    test::Entries entries;
    file.held.find_entries({0, u"n77"}, u"Name", entries, file.status);
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0]->record_offset(), before.at(0));
    std::vector<std::uint64_t> values;
    EXPECT_TRUE(entries[0]->values_of(0, values));
    Offsets found;
    file.held.find_records(values, 0, found, file.status);
    EXPECT_EQ(found, before);
    EXPECT_EQ(file.status.value(), 0U);
}

TEST(Connector, BlockSizesFollowTheNumberOfPairs) {
    std::size_t size = 4096; // and the most pairs in blocks of it
    for (const std::uint32_t pairs : {0x4000FFFU, 0x8001FFFU, 0xC002FFFU, 0x20003FFFU}) {
        EXPECT_EQ(tla::index_block_size(pairs, 1), size);
        size = size == 16384 ? 0 : size + 4096;
        EXPECT_EQ(tla::index_block_size(pairs + 1, 1), size);
    }
    EXPECT_EQ(tla::index_block_size(0x10002000, 2), 0);
    EXPECT_EQ(tla::index_block_size(0x80000001, 2), 4096); // wraps
}

TEST(Connector, ListsEveryRecord) {
    constexpr int COUNT = 9000; // three blocks
    test::Loaded file(test::version2(SCHEMA, {"Name", "City"}, numbered_rows(COUNT)));
    EXPECT_EQ(file.connector.key_names(), (std::vector<std::u16string>{u"Name", u"City"}));
    std::vector<std::int64_t> offsets = file.connector.record_offsets(file.status);
    ASSERT_EQ(offsets.size(), COUNT);
    EXPECT_FALSE(std::ranges::is_sorted(offsets)) << "in the order of the first key";
    std::ranges::sort(offsets);
    for (std::size_t i = 0; i + 1 < COUNT; ++i) {
        const auto entry = file.entry(offsets[i]);
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(offsets[i] + static_cast<std::int64_t>(entry->record_size()), offsets[i + 1]);
    }
    EXPECT_EQ(file.find("City", u"C5").size(), COUNT / 7);
    file.load(); // nothing is indexed twice
    EXPECT_EQ(file.connector.key_names().size(), 2);
    EXPECT_EQ(file.connector.record_offsets(file.status).size(), 2 * COUNT);
}

TEST(Connector, ATableWithoutItsDuplicatesListsWhatItHas) {
    const test::Rows rows = {{"a", "x"}, {"b", "x"}, {"a", "x"}};
    test::Loaded one_key(test::version2(SCHEMA, {"Name"}, rows));
    EXPECT_EQ(one_key.connector.record_offsets(one_key.status).size(), 2);
    EXPECT_EQ(one_key.find("Name", u"a").size(), 1);
    EXPECT_EQ(one_key.status.value(), 0U);
    // The next table is looked for where this one would end if it had all pairs.
    test::Loaded two_keys(test::version2(SCHEMA, {"Name", "City"}, rows));
    EXPECT_NE(two_keys.connector.key_names()[1], u"City");
    const test::Rows alike(5000, {"a", "x"});
    EXPECT_EQ(Connected(test::version2(SCHEMA, {"Name", "City"}, alike)).load(),
              scl::SCL_STATUS_END_OF_DATA);
    test::Loaded no_records(test::version2(SCHEMA, {"City"}, {}));
    EXPECT_EQ(no_records.connector.key_names(), std::vector<std::u16string>{u"City"});
    EXPECT_TRUE(no_records.find("City", u"x").empty());
    EXPECT_EQ(no_records.status.value(), 0U);
}

} // namespace
