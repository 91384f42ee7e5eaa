#include "data_set_files.hpp"
#include "scl/io/scl_buffers.hpp"
#include "tla/read/keys/pair_reader.hpp"

#include <algorithm>
#include <ctime>
#include <functional>
#include <map>
#include <random>

// Files that cost a reader more than they should, or try to.

namespace {

using Values = std::vector<std::uint64_t>;

double processor_seconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Bytes in memory that are read like a file, and count how many were.
class Counting_buffer final : public scl::Scl_buffer {
public:
    std::uint64_t size(bool /*in_units*/, scl::Scl_status& status) const override {
        return bytes.size(false, status);
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> to,
                        scl::Scl_status& status) const override {
        const std::size_t count = bytes.read_at(offset, to, status);
        read += count;
        return count;
    }

    scl::Scl_heap_buffer bytes;
    mutable std::uint64_t read = 0;
};

TEST(Hostile_file, AnUnsortedTableIsReadOnceForAllLookups) {
    constexpr std::uint32_t COUNT = 50'000;
    constexpr std::uint32_t BLOCK = 4096;
    constexpr std::uint64_t TABLE_BYTES = COUNT * 16;
    std::mt19937_64 random(3); // NOLINT: the same numbers each time
    std::vector<std::uint64_t> pairs(std::size_t{2} * COUNT);
    std::ranges::generate(pairs, random);
    std::multimap<std::uint64_t, std::uint32_t> places;
    for (std::uint32_t i = 0; i < COUNT; ++i) {
        if (i % 10 == 9) pairs[2 * i] = pairs[2 * (i - 9)];
        places.emplace(pairs[2 * i], i);
    }
    Counting_buffer file;
    scl::Scl_status status;
    file.bytes.write_at(0, std::as_bytes(std::span("K\0\0\0\0\0\0\0", 8)), status);
    file.bytes.write_at(8, std::as_bytes(std::span(pairs)), status);
    scl::Scl_buffered_istream in(file, false, status, scl::Scl_eol::none);
    tla::Key_index index = tla::read_key_index(in, COUNT, BLOCK, status);
    tla::Pair_reader reader(file);
    file.read = 0;
    for (std::uint32_t i = 0; i < COUNT; i += 170) {
        const std::uint64_t hash = pairs[2 * i];
        const auto [begin, end] = places.equal_range(hash);
        EXPECT_EQ(reader.all_with(index, hash, status).size(), std::distance(begin, end));
        const std::uint32_t block = i / BLOCK * BLOCK;
        const auto first = std::find_if(begin, end, [&](auto& p) { return p.second >= block; });
        EXPECT_EQ(reader.first_with(index, i / BLOCK, hash, status), first->second - block);
        EXPECT_EQ(reader.first_with(index, i / BLOCK, hash + 1, status),
                  std::min(BLOCK, COUNT - block));
    }
    EXPECT_EQ(status.value(), 0U);
    EXPECT_LT(file.read, 3 * TABLE_BYTES);
}

// Going through a record, or a list of names, from the front for each field would take seconds.
TEST(Hostile_file, ManyFieldsAreFoundWithoutGoingThroughThem) {
    constexpr std::size_t FIELDS = 60'000;
    std::string schema;
    test::Rows rows(1);
    for (std::size_t i = 0; i < FIELDS; ++i) {
        schema += "field" + std::to_string(i) + ",Simple;";
        rows[0].push_back("v" + std::to_string(i));
    }
    for (const int version : {1, 2}) {
        const std::string file = version == 1 ? test::version1(schema, {"field7"}, rows)
                                              : test::version2(schema, {"field7"}, rows);
        test::Loaded loaded(file);
        const auto entry = loaded.entry(loaded.connector.record_offsets(loaded.status).at(0));
        const double before = processor_seconds();
        Values by_place;
        Values by_name;
        std::u16string text;
        tla::Formatter_type_id type;
        for (std::size_t i = 0; i < FIELDS; ++i) {
            const std::u16string name = test::wide("field" + std::to_string(i));
            ASSERT_TRUE(entry->values_of(i, by_place) && entry->token_values(name, by_name, type));
            ASSERT_TRUE(by_place == by_name && entry->holds(i, by_name));
            if (version == 2) continue;
            ASSERT_TRUE(entry->text_value(name, text, type));
            ASSERT_EQ(text, test::wide(rows[0][i]));
        }
        EXPECT_FALSE(entry->token_values(u"field", by_name, type));
        EXPECT_LT(processor_seconds() - before, 1.0);
    }
}

TEST(Hostile_file, KeysFindTheirFieldsAmongManyWithoutGoingThroughThem) {
    constexpr std::uint16_t FIELDS = 60'000;
    std::string list;
    std::string tables;
    for (int i = 0; i < FIELDS; ++i) {
        const std::string name = "a rather long name " + std::to_string(100'000 + i);
        list += name + "\nSimple" + '\0';
        tables += "a rather long name " + std::to_string(160'000 - 1 - i) + std::string(7, '\0');
    }
    std::string file = test::version2("A,Simple", {}, {});
    file.resize(32);
    file += list + '\0';
    file.resize((file.size() + 7) / 8 * 8);
    test::put(file, 16, std::uint64_t{file.size()});
    test::put(file, 26, FIELDS);
    test::Loaded loaded(test::sealed(file + tables));
    const double before = processor_seconds();
    const std::vector<std::size_t> fields = loaded.connector.key_fields();
    EXPECT_LT(processor_seconds() - before, 1.0);
    ASSERT_EQ(fields.size(), FIELDS);
    EXPECT_TRUE(fields.front() == FIELDS - 1 && fields.back() == 0);
}

// What an entry says, by its own file's names.
struct Answers {
    explicit Answers(const tla::Tla_data_set_entry_file& entry) {
        tla::Formatter_type_id type;
        by_name = entry.token_values(u"Name", name, type);
        by_place = entry.values_of(1, city);
        holds = entry.holds(1, city);
        other = entry.token_values(u"Other", city, type);
        size = entry.record_size();
    }
    bool operator==(const Answers&) const = default;

    bool by_name, by_place, holds, other;
    Values name, city;
    std::uint64_t size;
};

TEST(Hostile_file, AnEntryAnswersAsItDidWhateverItsConnectorDoes) {
    using Connector = tla::Tla_data_set_connector_file;
    const auto open = [](Connector& connector) {
        scl::Scl_status status;
        connector.open(status);
    };
    const test::Workplace place;
    place.write("next", test::version2("Other,Simple;Name,Simple;More,Simple", {"Other"},
                                       {{"one", "two", "three"}}));
    const auto load_next = [&](Connector& connector) {
        scl::Scl_status status;
        connector.set_parameter("DataFileName", test::wide(place.path("next").string()), status);
        connector.hold_in_memory();
        connector.open(status);
        connector.load(status, true);
    };
    const std::string file =
        test::version2("Name,Simple;City,SimpleNC", {"Name"}, {{"Ann Lee", "New York"}});
    const std::vector<std::function<void(Connector&)>> deeds = {
        [](Connector& connector) { connector.close(); }, open, load_next,
        [&](Connector& connector) {
            connector.close();
            load_next(connector);
            connector.close();
        }};
    for (const bool held : {false, true}) {
        for (const auto& deed : deeds) {
            test::Loaded loaded(file);
            Connector& connector = held ? loaded.held : loaded.connector;
            const auto& fields = connector.field_descriptors(); // stays, whatever is in it
            const std::int64_t offset = connector.record_offsets(loaded.status).at(0);
            const auto entry = connector.read_entry(offset, loaded.status);
            const Answers before(*entry);
            EXPECT_TRUE(before.by_name && before.by_place && !before.other);
            deed(connector);
            EXPECT_TRUE(Answers(*entry) == before);
            EXPECT_LE(fields.size(), 3U);
        }
    }
}

} // namespace
