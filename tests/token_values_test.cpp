#include "records/delimiters.hpp"
#include "scl/text/scl_string.hpp"
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
    Values values;
    (void)txtdfc::txtdfc_token_values(wide, values);
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
            ASSERT_EQ((found.not_ascii >> i & 1U) == 1, static_cast<signed char>(block[i]) < 0)
                << i;
        }
    }
}

} // namespace
