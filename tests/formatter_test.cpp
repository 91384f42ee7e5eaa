#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_string.hpp"

#include <gtest/gtest.h>

namespace {

std::u16string formatted(const tla::Tla_formatter_base& formatter, std::u16string value,
                         bool raw = false) {
    std::u16string output = u"replaced";
    formatter.format(value, output, raw);
    formatter.format(value, value, raw);
    EXPECT_EQ(value, output) << "in place as well";
    return output;
}

TEST(Formatter, BringsValuesIntoOneForm) {
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

// The bytes of ASCII are formatted as its units are, whatever lies behind them.
TEST(Formatter, FormatsBytesAsItFormatsUnits) {
    const std::string text = "McCoy-[Z@`a{z}] 4111-1111 1111 -1111- --  -Az09_~";
    tla::Tla_padded_buffer<char> scratch;
    for (const std::string_view name : {"Simple", "SimpleNC", "CCNUMBER"}) {
        const tla::Formatter_type_id id = tla::tla_formatter_type_id_from_name(name);
        const auto formatter = tla::tla_create_formatter(id);
        const auto format_ascii = tla::tla_ascii_formatter(id);
        for (std::size_t at = 0; at + scl::SCL_BLOCK_BYTES < text.size(); ++at) {
            for (std::size_t size = 0; at + size + scl::SCL_BLOCK_BYTES <= text.size(); ++size) {
                std::u16string wide;
                scl::scl_stow(std::string_view(text).substr(at, size), wide);
                formatter->format(wide, wide, false);
                const auto bytes = format_ascii({&text[at], &text[at] + size}, scratch);
                ASSERT_EQ(wide, std::u16string(bytes.begin, bytes.end)) << name << at << size;
            }
        }
    }
}

} // namespace
