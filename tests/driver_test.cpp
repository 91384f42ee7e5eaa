#include "driver/option_scanner.hpp"
#include "driver/schema.hpp"
#include "records/values/tla_formatters.hpp"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

using driver::Schema;

TEST(Schema, ReadsFieldsInOrder) {
    Schema schema;
    ASSERT_TRUE(driver::parse_schema(
        "FirstName,Simple;Surname,simplenc; CardNum , CCNumber ;Odd,Nobody;", schema));
    ASSERT_EQ(schema.fields.size(), 4U);
    EXPECT_EQ(schema.fields[0].name, u"FirstName");
    EXPECT_EQ(schema.fields[2].name, u"CardNum");
    EXPECT_EQ(schema.types,
              (std::vector<tla::Formatter_type_id>{tla::Tla_simple_formatter::TYPE_ID,
                                                   tla::Tla_simplenc_formatter::TYPE_ID,
                                                   tla::Tla_ccnum_formatter::TYPE_ID,
                                                   {}}))
        << "an unknown type is no fault";
}

TEST(Schema, TakesAnyEvenNumberOfPieces) {
    const auto accepted = [](const char* text) {
        Schema schema;
        return driver::parse_schema(text, schema);
    };
    for (const char* good : {"a,Simple;;b,Simple", "a,Simple; ;b,Simple", "a,b,c,d", "", " ; "}) {
        EXPECT_TRUE(accepted(good)) << good;
    }
    for (const char* bad : {"a", "a,", ",Simple", "a,Simple,x", ",", "a,Simple;b", "a,Simple;,,"}) {
        EXPECT_FALSE(accepted(bad)) << bad;
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

// All options of a command line as text: "k=Name h ", and where the scan ended.
std::string scan(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "dsmake");
    const int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    driver::option_index = 1;
    driver::next_character = nullptr;
    std::string found;
    while (const char letter = driver::next_option(count, arguments.data(), "k:s:i:o:hu")) {
        found += letter;
        if (driver::option_argument != nullptr) found += std::string("=") + driver::option_argument;
        found += ' ';
        if (letter == driver::BAD_OPTION) break;
    }
    return found + std::to_string(driver::option_index);
}

TEST(Option_scanner, TakesBothPrefixesAndBothForms) {
    EXPECT_EQ(scan({"-k", "Name", "-kName", "/k", "Name", "/kName"}),
              "k=Name k=Name k=Name k=Name 7");
    EXPECT_EQ(scan({"-hu", "/uh"}), "h u u h 3") << "letters may be grouped";
    EXPECT_EQ(scan({"-uk", "a", "-ukb"}), "u k=a u k=b 4");
    EXPECT_EQ(scan({"-k", "-h"}), "k=-h 3") << "an argument may look like an option";
    EXPECT_EQ(scan({"-k", ""}), "k= 3");
}

TEST(Option_scanner, EndsBeforeTheFirstOther) {
    EXPECT_EQ(scan({"-h", "word", "-u"}), "h 2");
    EXPECT_EQ(scan({"-h", "", "-u"}), "h 2");
    for (const char* end : {"--", "-/", "/-", "//", "--help"}) {
        EXPECT_EQ(scan({"-h", end, "-u"}), "h 3") << end;
    }
    EXPECT_EQ(scan({"-", "-u"}), "2") << "a bare prefix is consumed and ends the options";
}

TEST(Option_scanner, RefusesWhatItDoesNotKnow) {
    for (const char* bad : {"-K", "-x", "-:", "?", "?x", "-?"}) {
        errno = 0;
        EXPECT_EQ(scan({bad, "Name"}).front(), '?') << bad;
        EXPECT_EQ(errno, EINVAL);
        EXPECT_EQ(driver::option_argument, nullptr);
    }
    EXPECT_EQ(scan({"-u", "-k"}).substr(0, 3), "u ?") << "a missing argument";
}

} // namespace
