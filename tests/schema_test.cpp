#include "driver/schema.hpp"

#include "records/formatter_types.hpp"
#include "records/tla_ccnum_formatter.hpp"
#include "records/tla_simple_formatter.hpp"
#include "records/tla_simplenc_formatter.hpp"

#include <gtest/gtest.h>

namespace {

using driver::Schema;

TEST(Schema, ReadsFieldsInOrder) {
    Schema schema;
    ASSERT_TRUE(driver::parse_schema(
        "FirstName,Simple;Surname,simplenc; CardNum , CCNumber ;Odd,Nobody;", schema));
    ASSERT_EQ(schema.fields.size(), 4U);
    EXPECT_EQ(schema.fields[0].name, u"FirstName");
    EXPECT_EQ(schema.fields[2].name, u"CardNum");
    EXPECT_EQ(schema.types[0], tla::Tla_simple_formatter::TYPE_ID);
    EXPECT_EQ(schema.types[1], tla::Tla_simplenc_formatter::TYPE_ID);
    EXPECT_EQ(schema.types[2], tla::Tla_ccnum_formatter::TYPE_ID);
    EXPECT_EQ(schema.types[3], tla::Formatter_type_id()) << "an unknown type is no fault";
    EXPECT_EQ(schema.fields[3].type, schema.types[3]);
}

TEST(Schema, TakesAnyEvenNumberOfPieces) {
    for (const char* good :
         {"a,Simple", "a,Simple;;b,Simple", "a,Simple; ;b,Simple", "a,b,c,d", "", ";", " ; "}) {
        Schema schema;
        EXPECT_TRUE(driver::parse_schema(good, schema)) << good;
    }
    for (const char* bad : {"a", "a,", ",Simple", "a,Simple,x", ",", "a,Simple;b", "a,Simple;,,"}) {
        Schema schema;
        EXPECT_FALSE(driver::parse_schema(bad, schema)) << bad;
    }
}

TEST(Schema, KeysFindTheFirstFieldOfTheirNameInAnyCase) {
    Schema schema;
    ASSERT_TRUE(driver::parse_schema("A,Simple;Straße,Simple;a,Simple;CardNum,Simple", schema));
    const std::vector<std::u16string> keys = {u"cardnum", u"a",       u"none",
                                              u"CARDNUM", u"STRASSE", u"STRAẞE"};
    std::vector<std::uint64_t> positions;
    driver::resolve_keys(schema.fields, keys, positions);
    EXPECT_EQ(positions, (std::vector<std::uint64_t>{3, 0, 3, 1}));
}

TEST(Formatter_types, NamesAndIdentifiersMapBothWays) {
    for (const char* name : {"Simple", "SimpleNC", "CCNUMBER"}) {
        const tla::Formatter_type_id id = tla::formatter_type_id_from_name(name);
        EXPECT_EQ(tla::formatter_name_from_type_id(id), name);
        EXPECT_EQ(tla::create_formatter(id)->name(), name);
        EXPECT_EQ(tla::create_formatter(id)->type_id(), id);
    }
    EXPECT_EQ(tla::formatter_type_id_from_name("Simple "), tla::Formatter_type_id());
    EXPECT_EQ(tla::formatter_name_from_type_id({1, 2}), "");
    EXPECT_EQ(tla::create_formatter({}), nullptr);
}

std::u16string formatted(const tla::Tla_formatter_base& formatter, std::u16string_view value,
                         bool raw = false) {
    std::u16string output = u"replaced";
    formatter.format(value, output, raw);
    std::u16string in_place(value);
    formatter.format(in_place, in_place, raw);
    EXPECT_EQ(in_place, output);
    return output;
}

TEST(Formatters, BringValuesIntoOneForm) {
    const tla::Tla_simple_formatter simple;
    const tla::Tla_simplenc_formatter simplenc;
    const tla::Tla_ccnum_formatter ccnum;
    EXPECT_EQ(formatted(simple, u"Rene\u0301"), u"Ren\u00E9");
    EXPECT_EQ(formatted(simple, u"Rene\u0301", true), u"Rene\u0301");
    EXPECT_EQ(formatted(simplenc, u"RENE\u0301", true), u"rene\u0301");
    EXPECT_EQ(formatted(simplenc, u"ΟΔΟΣ"), u"οδος") << "a final sigma";
    EXPECT_EQ(formatted(simplenc, u"J\u030C"), u"\u01F0") << "composes only in lower case";
    EXPECT_EQ(formatted(ccnum, u"4111-1111 1111-1111"), u"4111111111111111");
    EXPECT_EQ(formatted(ccnum, u"--"), u"");
    EXPECT_EQ(formatted(ccnum, u"12\u00A0ab\u2011"), u"12\u00A0ab\u2011");
    const std::u16string lone = u"E\u0301\xD800";
    EXPECT_EQ(formatted(simple, lone), lone) << "not well-formed: left as it is";
}

} // namespace
