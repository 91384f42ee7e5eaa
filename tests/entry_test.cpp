#include "data_set_files.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/io/scl_buffers.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/read/entries/entry_reader.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

namespace {

using namespace std::string_literals;
using test::sealed;
using Values = std::vector<std::uint64_t>;

const Values NONE = {77}; // what the tests make of a field that gives no values

Values tokens_of(std::u16string_view text) {
    Values values;
    (void)txtdfc::txtdfc_token_values(text, values);
    return values;
}

// An entry with fields a and b over bytes that stand for a whole file whose records begin at
// `data_start`.
struct Raw_entry {
    Raw_entry(std::string_view bytes, std::uint8_t version, std::uint64_t data_start = 0) {
        header.raw_version[0] = version;
        header.data_start = data_start;
        auto file = std::make_unique<scl::Scl_heap_buffer>();
        file->write_at(0, std::as_bytes(std::span(bytes)), status);
        const auto source = std::make_shared<const tla::Entry_source>(
            std::move(file), std::make_shared<const tla::Entry_fields>(fields));
        entry = tla::Entry_reader(source, header).make(0);
        entry->read(status);
    }
    Values values(std::u16string_view name) const {
        Values found = {99}; // replaced
        tla::Formatter_type_id type;
        return entry->token_values(name, found, type) ? found : NONE;
    }

    scl::Scl_status status;
    tla::Tla_data_set_header header;
    std::vector<tla::Field_descriptor> fields = {{u"a", {}}, {u"b", {}}};
    std::unique_ptr<tla::Tla_data_set_entry_file> entry;
};

std::string scrambled_text(std::string text, std::uint64_t position = 0) {
    for (char& byte : text) {
        byte = tla::tla_scrambled(byte, position++);
    }
    return text;
}

TEST(Entry, ReadsTokenListsUpToTheClosingByte) {
    const Raw_entry empty("\0\0\0\0\0"s, 2);
    EXPECT_EQ(empty.status.value(), 0U);
    EXPECT_EQ(empty.values(u"b"), Values{});
    EXPECT_EQ(empty.values(u"B"), NONE);
    std::u16string text;
    tla::Formatter_type_id type;
    EXPECT_FALSE(empty.entry->text_value(u"a", text, type));
    const Raw_entry open_ended("\0\1\1\2\3\4\5\6\7\x8\0\0\x9"s, 2);
    EXPECT_EQ(open_ended.status.value(), tla::TLA_STATUS_RECORD_END);
    EXPECT_EQ(open_ended.values(u"a"), Values{0x0102030405060708});
    Values values;
    EXPECT_FALSE(empty.entry->values_of(2, values) || empty.entry->holds(2, {}));
    EXPECT_TRUE(empty.entry->values_of(1, values) && empty.entry->holds(1, {}));
    for (const std::string& cut :
         {""s, "\0"s, "\0\1\1\2\3\4\5\6\7"s, "\0\0\xff\xff"s, "\0\0\0\0"s}) {
        EXPECT_EQ(Raw_entry(cut, 2).status.value(), scl::SCL_STATUS_END_OF_DATA);
    }
}

TEST(Entry, LongerThanAWindowIsReadInPiecesAndChecked) {
    const std::u16string text(9000, u'-');
    std::string file = test::version2("A,Simple", {"A"}, {{std::string(text.size(), '-')}});
    const auto only_entry = [&file, &text](std::uint8_t end) {
        file[test::key_tables_of(file) - 1] = static_cast<char>(end);
        test::Loaded opened(sealed(file));
        const auto entry = opened.entry(static_cast<std::int64_t>(opened.connector.data_start()));
        EXPECT_TRUE(entry == nullptr || entry->holds(0, tokens_of(text)));
        EXPECT_EQ(opened.status.value(), end == 0 ? 0U : tla::TLA_STATUS_RECORD_END);
        return entry != nullptr;
    };
    EXPECT_TRUE(only_entry(0) && !only_entry(1));
}

TEST(Entry, OfVersion1EndsWhereItsTextsDo) {
    const Raw_entry empty_last(scrambled_text(" Ann \n\0"s), 1);
    EXPECT_EQ(empty_last.status.value(), 0U);
    EXPECT_EQ(empty_last.values(u"a"), tokens_of(u" Ann ")); // neither trimmed nor formatted
    std::u16string text;
    tla::Formatter_type_id type;
    EXPECT_TRUE(empty_last.entry->text_value(u"a", text, type));
    EXPECT_EQ(text, u" Ann ");
    EXPECT_EQ(empty_last.values(u"b"), Values{});
    for (const std::string& other : {"Ann\0"s, "a\nb\nc\0"s, "\0"s, "a\nb"s, ""s}) {
        const Raw_entry entry(scrambled_text(other), 1);
        EXPECT_EQ(entry.status.value(), tla::TLA_STATUS_VALUE_COUNT);
        EXPECT_EQ(entry.values(u"a"), NONE);
        EXPECT_FALSE(entry.entry->text_value(u"a", text, type));
    }
    // All texts ended, but not the record.
    EXPECT_EQ(Raw_entry(scrambled_text("a\nb\n"s), 1).status.value(), scl::SCL_STATUS_END_OF_DATA);
}

TEST(Entry, OfVersion1IsScrambledByItsPlaceInTheData) {
    EXPECT_EQ(scrambled_text("\0\0\0\0\0\0\0\0\0"s), "\x3C\x7E\x91\xD4\x0A\x6B\xE2\x58\x3C");
    for (const std::uint64_t before : {1U, 5U, 11U}) { // bytes of data before the record
        const std::string bytes = scrambled_text("more than eight bytes\nb\0"s, before);
        EXPECT_EQ(Raw_entry(bytes, 1, 0 - before).values(u"b"), tokens_of(u"b")) << before;
    }
}

} // namespace
