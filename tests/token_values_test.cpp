#include "records/input/delimiters.hpp"
#include "records/input/tla_field_copies.hpp"
#include "records/values/record_layout.hpp"
#include "records/values/tla_key_hash.hpp"
#include "records/values/tla_value_tokens.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/text/scl_string.hpp"
#include "txt/plain_runs.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <gtest/gtest.h>

#include <random>

namespace {

using Values = std::vector<std::uint64_t>;

// Of ASCII bytes, with a block of something else behind them.
Values values_of_bytes(std::string text, char behind) {
    const std::size_t size = text.size();
    text.append(scl::SCL_BLOCK_BYTES, behind);
    Values values;
    txtdfc::txtdfc_each_token_value(scl::Scl_text_span<char>{text.data(), text.data() + size},
                                    [&values](std::uint64_t value) { values.push_back(value); });
    return values;
}

Values values_of_units(std::string_view text) {
    std::u16string wide;
    scl::scl_stow(text, wide);
    const std::vector<char16_t> exact(wide.begin(), wide.end()); // with nothing behind it
    Values values;
    (void)txtdfc::txtdfc_token_values({exact.data(), exact.size()}, values);
    return values;
}

// Words cut by every rule that ASCII knows, at every length around a block.
TEST(Token_values, OfBytesAreThoseOfUnits) {
    std::mt19937 random(10); // NOLINT: the same numbers each time
    const std::string alphabet = "abcXYZ019__.':;,\"- \t\v\r\n+!" + std::string("\0\x7F", 2);
    for (int round = 0; round < 60000; ++round) {
        const std::size_t kinds = round % 3 == 0 ? 11 : round % 3 == 1 ? 18 : alphabet.size();
        std::string text(random() % 40, 'w');
        for (char& character : text) {
            if (random() % 3 != 0) character = alphabet[random() % kinds];
        }
        const char behind = "a 1'."[random() % 5];
        ASSERT_EQ(values_of_bytes(text, behind), values_of_units(text))
            << testing::PrintToString(text);
    }
}

// The bytes of a record's only field, as a build stores them.
std::string stored(const std::string& value, const tla::Formatter_type_id& type) {
    const std::vector<tla::Field_descriptor> fields = {{u"A", type}};
    tla::Tla_record_processor processor(fields, {}, nullptr);
    tla::Tla_field_copies copies;
    copies.add(value);
    scl::Scl_status status;
    scl::Scl_heap_buffer records;
    scl::Scl_ostream out(records);
    processor.process({copies.fields()}, out, status);
    out.detach(status);
    const auto bytes = records.contents();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Bytes, UTF-16 units, and values too long to be narrowed: one way for all.
TEST(Value_tokens, OfALookupAreThoseOfARecord) {
    const std::vector<std::string> pieces = {"smith",
                                             "ZO\xC3\x8B",
                                             "-",
                                             " ",
                                             "4111",
                                             "'",
                                             "\xEF\xBB\xBF",
                                             "I\xCC\x87",
                                             "\xC3\xBF",
                                             "J\xCC\x8C",
                                             "\xCE\xA3",
                                             "\xFF",
                                             "\xC3",
                                             "\xC2\xA0",
                                             "\xE6\x9D\x8E",
                                             ".",
                                             std::string(300, 'a')};
    std::mt19937 random(12); // NOLINT: the same numbers each time
    tla::Tla_value_tokeniser tokeniser;
    for (int round = 0; round < 6000; ++round) {
        std::string value = "x"; // not trimmed, and never empty
        for (auto left = random() % 5; left > 0; --left) {
            value += pieces[random() % pieces.size()];
        }
        value += "y";
        if (round % 3 == 0) value.insert(0, "\xEF\xBB\xBF");
        const auto type = round % 2 == 0 ? tla::Tla_simplenc_formatter::TYPE_ID
                                         : tla::Tla_ccnum_formatter::TYPE_ID;
        std::u16string wide;
        scl::scl_stow(value, wide);
        Values values;
        scl::Scl_status status;
        tokeniser.tokenise(wide, type, values, status);
        const std::string record = stored(value, type);
        const auto bytes = std::as_bytes(std::span(record));
        ASSERT_TRUE(tla::tla_field_holds(bytes, 0, values)) << testing::PrintToString(value);
        ASSERT_EQ(tla::tla_key_hash(values), tla::tla_key_hash(tla::tla_field_values(bytes, 0)));
        values[random() % values.size()] ^= 1;
        ASSERT_FALSE(tla::tla_field_holds(bytes, 0, values)) << testing::PrintToString(value);
    }
}

// Beside letters and marks: a record takes most values by short ways, a lookup none. All characters
// of one and two bytes, and some others.
TEST(Value_tokens, OfEveryCharacterAreThoseOfALookup) {
    std::mt19937 random(22); // NOLINT: the same numbers each time
    tla::Tla_value_tokeniser tokeniser;
    for (unsigned unit = 0x80; unit < 0x10000; unit += unit < 0x900 ? 1 : 17) {
        const auto& type = unit % 3 == 0   ? tla::Tla_simple_formatter::TYPE_ID
                           : unit % 3 == 1 ? tla::Tla_ccnum_formatter::TYPE_ID
                                           : tla::Tla_simplenc_formatter::TYPE_ID;
        for (const tla::Formatter_type_id& id : {type, tla::Tla_simplenc_formatter::TYPE_ID}) {
            const auto character = static_cast<char16_t>(unit);
            std::u16string wide = u"x  x"; // not trimmed
            wide[1] = random() % 2 == 0 ? character : u"aeOUIC\u0399\u0415"[random() % 8];
            wide[2] = random() % 2 == 0 ? character : u"\u0301\u0308\u0307\u0323"[random() % 4];
            wide[3] = u"x\u0416\u0323\u0304"[random() % 4];
            std::string value;
            scl::scl_wtos(wide, value, true);
            Values values;
            scl::Scl_status status;
            std::u16string read; // a lone surrogate has become another character
            scl::scl_stow(value, read);
            tokeniser.tokenise(read, id, values, status);
            const std::string record = stored(value, id);
            ASSERT_TRUE(tla::tla_field_holds(std::as_bytes(std::span(record)), 0, values)) << unit;
        }
    }
}

// What is behind a text does not complete its last character.
TEST(Plain_run, EndsWithItsLastCharacter) {
    const std::string bytes = "ZO\xC3\x8B" + std::string(scl::SCL_BLOCK_BYTES, ' ');
    const auto value_of = [&](std::size_t size) {
        return txt::txt_plain_run_value({bytes.data(), bytes.data() + size}, true);
    };
    EXPECT_EQ(value_of(3), 0U);
    EXPECT_EQ(value_of(4), txt::txt_token_value(u"zo\u00EB"));
}

TEST(Token_values, OfATextEndAtFifteenMillion) {
    constexpr std::size_t MOST = 15000000;
    const std::string text(MOST + 1 + scl::SCL_BLOCK_BYTES, '!');
    std::size_t count = 0;
    const auto all = [&text, &count] {
        txtdfc::txtdfc_each_token_value(
            scl::Scl_text_span<char>{text.data(), text.data() + MOST + 1},
            [&count](std::uint64_t) { ++count; });
    };
    EXPECT_THROW(all(), std::runtime_error);
    EXPECT_EQ(count, MOST);
}

TEST(Delimiters, AreThoseThatABytewiseSearchFinds) {
    std::mt19937 random(11); // NOLINT: the same numbers each time
    for (int round = 0; round < 2000; ++round) {
        std::string block(tla::Delimiters::BLOCK, 'a');
        for (char& byte : block) {
            if (random() % 4 == 0) byte = "\t\r\n\xEF\xBB\x80\x7F\v"[random() % 8];
        }
        const tla::Delimiters found = tla::find_delimiters(block.data());
        for (std::size_t i = 0; i < block.size(); ++i) {
            const bool ends = block[i] == '\t' || block[i] == '\r' || block[i] == '\n';
            ASSERT_EQ((found.ends >> i & 1U) == 1, ends) << i;
            ASSERT_EQ((found.mark_leads >> i & 1U) == 1, block[i] == '\xEF') << i;
        }
    }
}

} // namespace
