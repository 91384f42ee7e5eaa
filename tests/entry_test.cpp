#include "data_set_files.hpp"
#include "records/field_token_writer.hpp"
#include "records/tla_ccnum_formatter.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/scl_heap_buffer.hpp"
#include "tla/scrambling.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace {

using test::Connected;
using Values = std::vector<std::uint64_t>;

const std::string SCHEMA = "Name,SimpleNC;Card,CCNUMBER";

Values tokens_of(std::u16string_view text) {
    tla::Field_token_writer writer;
    scl::Scl_status status;
    Values values;
    (void)writer.collect(text, values, status);
    return values;
}

// An entry over bytes that stand for a whole file whose records begin at `data_start`.
struct Raw_entry {
    explicit Raw_entry(std::string_view bytes, std::uint8_t version, std::size_t field_count = 2,
                       std::uint64_t data_start = 0)
        : fields(field_count) {
        for (std::size_t i = 0; i < field_count; ++i) {
            fields[i].name = static_cast<char16_t>(u'a' + i);
        }
        scl::Scl_ostream out(file, status, scl::Scl_eol::none);
        out.write(bytes, status);
        out.detach(status);
        entry.emplace(fields, version, data_start, 0, file);
        entry->read(status);
    }
    Values values(std::u16string_view name) const {
        Values found = {99};
        tla::Formatter_type_id type;
        return entry->token_values(name, found, type) ? found : Values{77};
    }

    scl::Scl_status status;
    std::vector<tla::Field_descriptor> fields;
    scl::Scl_heap_buffer file;
    std::optional<tla::Tla_data_set_entry_file> entry;
};

std::string scrambled_text(std::string text, std::uint64_t position = 0) {
    for (char& byte : text) {
        byte = tla::scrambled(byte, position++);
    }
    return text;
}

TEST(Entry, HasTheTokenValuesOfEachField) {
    Connected file(test::version2(SCHEMA, {"Name"}, {{" Ann  Lee ", "41-11"}}));
    ASSERT_EQ(file.load(), 0U);
    const auto entry = file.entry(file.connector.record_offsets(file.status).front());
    ASSERT_NE(entry, nullptr);
    Values values;
    tla::Formatter_type_id type;
    EXPECT_TRUE(entry->token_values(u"Name", values, type));
    EXPECT_EQ(values, tokens_of(u"ann  lee"));
    EXPECT_TRUE(entry->token_values(u"Card", values, type));
    EXPECT_EQ(values, tokens_of(u"4111"));
    EXPECT_EQ(type, tla::Tla_ccnum_formatter::TYPE_ID);
    EXPECT_FALSE(entry->token_values(u"card", values, type));
    EXPECT_EQ(values, tokens_of(u"4111"));
    std::u16string text = u"as it was";
    EXPECT_FALSE(entry->text_value(u"Name", text, type));
    EXPECT_EQ(text, u"as it was");
}

TEST(Entry, ReadsTokenListsUpToTheClosingByte) {
    using namespace std::string_literals;
    const Raw_entry empty("\0\0\0\0\0"s, 2);
    EXPECT_EQ(empty.status.value(), 0U);
    EXPECT_EQ(empty.values(u"b"), Values{});
    const Raw_entry open_ended("\0\1\1\2\3\4\5\6\7\x8\0\0\x9"s, 2);
    EXPECT_EQ(open_ended.status.value(), tla::TLA_STATUS_RECORD_END);
    EXPECT_EQ(open_ended.values(u"a"), Values{0x0102030405060708});
    EXPECT_EQ(open_ended.values(u"b"), Values{});
    for (const std::string& cut :
         {""s, "\0"s, "\0\1\1\2\3\4\5\6\7"s, "\0\0\xff\xff"s, "\0\0\0\0"s}) {
        EXPECT_EQ(Raw_entry(cut, 2).status.value(), scl::SCL_STATUS_END_OF_DATA);
    }
}

TEST(Entry, OfVersion1HasTextsAsTheyStand) {
    Connected file(test::version1(SCHEMA, {"Name"}, {{"x", "y"}, {" Ann ", "41-\xff"}}));
    ASSERT_EQ(file.load(), 0U);
    const auto& offsets = file.connector.record_offsets(file.status);
    const auto entry = file.entry(*std::ranges::max_element(offsets));
    ASSERT_NE(entry, nullptr);
    std::u16string text;
    Values values;
    tla::Formatter_type_id type;
    EXPECT_TRUE(entry->text_value(u"Name", text, type));
    EXPECT_EQ(text, u" Ann ");
    EXPECT_TRUE(entry->text_value(u"Card", text, type));
    EXPECT_EQ(text, std::u16string(u"41-") + char16_t{0xDCFF});
    EXPECT_EQ(type, tla::Tla_ccnum_formatter::TYPE_ID);
    EXPECT_FALSE(entry->text_value(u"CARD", text, type));
    EXPECT_TRUE(entry->token_values(u"Name", values, type));
    EXPECT_EQ(values, tokens_of(u" Ann ")); // neither trimmed nor formatted
}

TEST(Entry, OfVersion1EndsWhereItsTextsDo) {
    using namespace std::string_literals;
    const Raw_entry empty_last(scrambled_text("Ann\n\0"s), 1);
    EXPECT_EQ(empty_last.status.value(), 0U);
    EXPECT_EQ(empty_last.values(u"a"), tokens_of(u"Ann"));
    EXPECT_EQ(empty_last.values(u"b"), Values{});
    for (const std::string& other : {"Ann\0"s, "a\nb\nc\0"s, "\0"s, "a\nb"s, ""s}) {
        const Raw_entry entry(scrambled_text(other), 1);
        EXPECT_EQ(entry.status.value(), tla::TLA_STATUS_VALUE_COUNT);
        EXPECT_EQ(entry.status.entries().size(), 1);
        EXPECT_EQ(entry.values(u"a"), Values{77});
    }
    // All texts ended, but not the record.
    EXPECT_EQ(Raw_entry(scrambled_text("a\nb\n"s), 1).status.value(), scl::SCL_STATUS_END_OF_DATA);
}

TEST(Entry, OfVersion1IsScrambledByItsPlaceInTheData) {
    using namespace std::string_literals;
    const std::string text = "some text of more than eight bytes\nb\0"s;
    EXPECT_EQ(scrambled_text("\0\0\0\0\0\0\0\0\0"s), "\x3C\x7E\x91\xD4\x0A\x6B\xE2\x58\x3C");
    for (const std::uint64_t before : {1, 5, 8, 11}) { // bytes of data before the record
        const std::string bytes = scrambled_text(text, before);
        EXPECT_EQ(Raw_entry(bytes, 1, 2, 0 - before).values(u"b"), tokens_of(u"b")) << before;
        const bool as_at_start = Raw_entry(bytes, 1).values(u"b") == tokens_of(u"b");
        EXPECT_EQ(as_at_start, before == 8);
    }
}

} // namespace
