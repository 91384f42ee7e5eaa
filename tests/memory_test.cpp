#include "memory.hpp"

#include "data_set_files.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/io/scl_buffers.hpp"
#include "tla/c/dsmake.h"
#include "tla/format/data_set_layout.hpp"
#include "tla/scan/tla_text_scan.hpp"
#include "tla/upgrade/upgrade_data_set.hpp"

#include <algorithm>

namespace {

using namespace std::string_literals;
using test::fail_each;
using test::Memory;

const std::string SCHEMA = "Name with many letters,SimpleNC;City,Simple;Card,CCNUMBER";
const test::Keys KEYS = {"City", "Card"};
constexpr std::size_t COUNT = 40;

test::Rows rows() {
    test::Rows all;
    for (std::size_t i = 0; i < COUNT; ++i) {
        all.push_back({"a name of words " + std::to_string(i), i % 3 == 0 ? "York" : "New York",
                       "4111 1111 " + std::to_string(i)});
    }
    return all;
}

std::string unsorted_file() {
    std::string file = test::version2(SCHEMA, {"City"}, rows());
    const std::size_t pairs = test::pairs_of_first_key(file);
    std::swap_ranges(&file[pairs + 16], &file[pairs + 32], &file[file.size() - 32]);
    return test::sealed(file);
}

struct Opened {
    explicit Opened(std::string_view file, bool holds = false) {
        place.write("file", file);
        scl::Scl_status status;
        connector.set_parameter("DataFileName", test::wide(place.path("file").string()), status);
        if (holds) connector.hold_in_memory();
        connector.open(status);
    }
    explicit Opened(bool is_loaded, std::string_view file) : Opened(file) {
        scl::Scl_status status;
        if (is_loaded) connector.load(status, true);
        EXPECT_EQ(status.value(), 0U);
    }

    test::Workplace place;
    tla::Tla_data_set_connector_file connector;
};

class No_memory : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Version, No_memory, testing::Values(1, 2));

std::string file_of(int version) {
    return version == 1 ? test::version1(SCHEMA, KEYS, rows(), [](auto) { return 5; })
                        : test::version2(SCHEMA, KEYS, rows());
}

TEST_P(No_memory, IsToldOfByOpeningAndLoading) {
    const std::string file = file_of(GetParam());
    for (const bool holds : {false, true}) {
        const Opened opened(file); // its file
        std::size_t keys = 0;
        std::size_t fields = 0;
        fail_each(
            [&](scl::Scl_status& status) {
                tla::Tla_data_set_connector_file connector;
                connector.set_parameter("DataFileName",
                                        test::wide(opened.place.path("file").string()), status);
                if (holds) connector.hold_in_memory();
                connector.open(status);
                if (!status.has_failed()) connector.load(status, true);
                if (status.has_failed()) return;
                keys = connector.key_names().size();
                fields = connector.field_descriptors().size();
            },
            [&] { EXPECT_TRUE(keys == 2 && fields == 3); });
    }
}

TEST_P(No_memory, LosesNoRecord) {
    for (const std::string& file : {file_of(GetParam()), unsorted_file()}) {
        test::Entries expected;
        scl::Scl_status good;
        Opened(true, file).connector.find_entries({5, u"York"}, u"City", expected, good);
        ASSERT_GT(expected.size(), 0U);
        Opened opened(true, file);
        test::Entries entries;
        fail_each(
            [&](scl::Scl_status& status) {
                entries.clear();
                opened.connector.find_entries({5, u"York"}, u"City", entries, status);
            },
            [&] { EXPECT_EQ(entries.size(), expected.size()); });
        std::vector<std::uint64_t> values;
        std::u16string text;
        const std::int64_t offset = entries.back()->record_offset();
        fail_each(
            [&](scl::Scl_status& status) {
                tla::Formatter_type_id type;
                const auto entry = opened.connector.read_entry(offset, status);
                values.clear();
                if (entry == nullptr) return;
                (void)entry->token_values(u"City", values, type);
                (void)entry->text_value(u"City", text, type);
            },
            [&] { EXPECT_EQ(values.size(), 1U); });
        std::size_t before = 0;
        std::size_t listed = 0;
        fail_each(
            [&](scl::Scl_status& status) {
                before = listed;
                listed = opened.connector.record_offsets(status).size();
            },
            [&] { EXPECT_EQ(listed - before, COUNT) << "each call adds them"; });
    }
}

TEST(No_memory_here, LosesNoRecordByTokens) {
    for (const std::string& file : {file_of(2), unsorted_file()}) {
        std::vector<std::int64_t> offsets;
        std::uint32_t largest = 0;
        Opened opened(true, file);
        const auto expect_all = [&] { EXPECT_TRUE(offsets.size() == 14 && largest == 2); };
        fail_each(
            [&](scl::Scl_status& status) {
                tla::Tla_data_set_connector_file& connector = opened.connector;
                offsets.clear();
                offsets.shrink_to_fit();
                connector.find_records(u"York", 0, offsets, status);
                if (!status.has_failed()) largest = connector.largest_token_count(0, status);
            },
            expect_all);
    }
}

TEST(No_memory_here, LeavesNoUpgradeThatLacksARecord) {
    const test::Workplace place;
    place.write("old", file_of(1));
    const std::string path = place.path("old").string();
    scl::Scl_status good;
    const std::string expected = test::upgraded(file_of(1), good);
    auto output = std::make_unique<scl::Scl_heap_buffer>();
    fail_each(
        [&](scl::Scl_status& status) {
            output = std::make_unique<scl::Scl_heap_buffer>();
            tla::upgrade_data_set(path, *output, status);
        },
        [&] {
            const auto bytes = output->contents();
            EXPECT_TRUE(std::ranges::equal(bytes, std::as_bytes(std::span(expected))));
        });
    EXPECT_FALSE(std::filesystem::exists("mid_buf"));
}

TEST(No_memory_here, IsToldOfByTheCInterface) {
    const test::Workplace place;
    place.write("file", file_of(2));
    const std::string path = place.path("file").string();
    const auto check = [](bool right, dsmake_data_set* set) {
        const std::string_view told = set == nullptr ? "enough memory" : dsmake_message(set);
        EXPECT_TRUE(right || told.find("enough memory") != std::string_view::npos) << told;
    };
    for (const bool stays : {false, true}) {
        for (long number = 1;; ++number) {
            dsmake_data_set* set = nullptr;
            const auto open = [&](scl::Scl_status&) {
                set = dsmake_open(path.c_str(), DSMAKE_HOLD_IN_MEMORY);
            };
            EXPECT_EQ(test::with_failure_at(number, stays, open), test::End::done);
            const bool opened = set != nullptr && *dsmake_message(set) == '\0';
            check(opened, set);
            const bool open_failed = Memory::has_failed;
            std::int64_t found = -1;
            const auto find = [&](scl::Scl_status&) { found = dsmake_find(set, "City", "York"); };
            if (opened) {
                EXPECT_EQ(test::with_failure_at(number, stays, find), test::End::done);
                check(found == 14, set);
            } else {
                const std::string told = dsmake_message(set);
                EXPECT_EQ(dsmake_find(set, "City", "York"), -1);
                EXPECT_EQ(dsmake_message(set), told) << "not that it has no such key";
                EXPECT_EQ(dsmake_code(set), DSMAKE_NO_MEMORY);
            }
            dsmake_close(set);
            if (!open_failed && !Memory::has_failed) break;
        }
    }
}

class Counter final : public tla::Tla_scan_listener {
public:
    bool take(const tla::Tla_scan_find& find) override {
        sum += find.place + static_cast<std::uint64_t>(find.record) * find.fields.size();
        return true;
    }
    std::uint64_t sum = 0;
};

std::uint64_t found_by(tla::Tla_text_scan& scan, std::string_view text) {
    Counter counter;
    scan.start(counter);
    for (std::size_t at = 0; at < text.size(); at += 100) {
        scan.feed(std::as_bytes(std::span(text.substr(at, 100))));
    }
    scan.finish();
    return counter.sum;
}

// All that is found or a lack of memory, and the next text is right, whatever became of this one.
TEST(No_memory_here, EndsOneScanAndNotTheNext) {
    std::string many;
    for (int i = 0; i < 150; ++i) {
        many += i % 40 == 39 ? "it's " : "no ";
    }
    test::Rows table = rows();
    table.push_back({many, "York", "4111"});
    const std::string file = test::version2(SCHEMA, KEYS, table);
    const std::string text = "New York 4111 1111 39 \u00E9 \xFF a name of words 39\n" + many +
                             many + " York l'a.b_c's 4111 " + std::string(300, 'x');
    std::uint64_t expected = 0;
    for (const bool stays : {false, true}) {
        const std::size_t short_text = stays ? 0 : 10'000;
        long number = 0;
        for (bool goes_on = true; goes_on; ++number) {
            SCOPED_TRACE(number);
            std::unique_ptr<const tla::Tla_scan_index> index;
            std::unique_ptr<tla::Tla_text_scan> scan;
            std::uint64_t found = 0;
            const auto work = [&](scl::Scl_status& status) {
                const auto bytes = std::as_bytes(std::span(file));
                index = tla::Tla_scan_index::over(bytes, u"file", {}, status);
                if (index == nullptr) return;
                scan = std::make_unique<tla::Tla_text_scan>(
                    *index, tla::Tla_scan_options{.within = number % 2 == 0
                                                                ? std::optional<std::uint64_t>(1000)
                                                                : std::nullopt,
                                                  .short_text = short_text,
                                                  .window = 200});
                found = found_by(*scan, text);
            };
            const test::End end = test::with_failure_at(number, stays, work);
            goes_on = number == 0 || Memory::has_failed;
            if (number == 0) expected = found;
            ASSERT_NE(expected, 0U);
            ASSERT_NE(end, test::End::other);
            EXPECT_TRUE(end == test::End::no_memory || found == expected);
            EXPECT_TRUE(scan == nullptr || found_by(*scan, text) == expected);
        }
        EXPECT_GT(number, 100) << "many takings of memory were made to fail";
    }
}

// A field list of 9 bytes a field, and one of a single name.
TEST(Memory_taken, IsInProportionToAFileWhateverItsChecksum) {
    constexpr std::size_t FIELDS = 200'000;
    std::string many;
    for (std::size_t i = 0; i < FIELDS; ++i) {
        many += std::to_string(1'000'000 + i) + "\n\0"s;
    }
    for (const std::string& list : {many, std::string(9 * FIELDS, 'x') + "\n\0"s}) {
        std::string file = test::version2("A,Simple", {}, {});
        file.resize(tla::TLA_FIELD_LIST_OFFSET);
        file += list + '\0';
        file.resize(tla::tla_aligned(file.size()));
        test::put(file, 16, std::uint64_t{file.size()});
        for (const bool is_right : {false, true}) {
            for (const bool holds : {false, true}) {
                test::put(file, 8, std::uint64_t{0});
                Opened opened(is_right ? test::sealed(file) : file, holds);
                scl::Scl_status status;
                const std::size_t before = Memory::in_use;
                Memory::most = before;
                opened.connector.load(status, false);
                EXPECT_EQ(status.value(), is_right ? 0U : tla::TLA_STATUS_CHECKSUM);
                EXPECT_LT(Memory::most - before, (is_right ? 10 : 4) * file.size());
            }
        }
    }
}

} // namespace
