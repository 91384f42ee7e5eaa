#include "txt/plain_runs.hpp"

#include "scl/text/unicode_tables.hpp"
#include "txt/word_runs.hpp"

namespace txt {

namespace {

// The capitals whose small form depends on what is around them, or has two units.
constexpr unsigned CAPITAL_SIGMA = 0x3A3;

// Not 0 where normalisation or small letters take more than a look at the unit.
unsigned is_special(unsigned unit) {
    return (scl::impl::UNIT_TRAITS[unit] & scl::impl::UNIT_TOUCHED) |
           static_cast<unsigned>(unit == CAPITAL_SIGMA) |
           static_cast<unsigned>(unit == scl::impl::CAPITAL_I_WITH_DOT);
}

unsigned is_no_run(unsigned unit) {
    return static_cast<unsigned>(!impl::RUN_UNITS[scl::impl::SCL_UNICODE_BIT_TABLE[unit]]);
}

} // namespace

// Computes with each character's length and faults. Branches would often be mispredicted, since
// names such as "Müller" change between one byte and two. The byte behind the last one may be read.
std::size_t txt_convert_plain_run(scl::Scl_text_span<char> text, bool lowers, char16_t* to) {
    if (text.size() > TXT_PLAIN_RUN_BYTES) return 0;
    std::size_t count = 0;
    const char* at = text.begin;
    while (at < text.end) {
        const unsigned lead = static_cast<unsigned char>(at[0]);
        const unsigned next = static_cast<unsigned char>(at[1]);
        const unsigned is_pair = lead >> 7U;
        const unsigned pair = (lead & 0x1FU) << 6U | (next & 0x3FU);
        const unsigned unit = lead ^ ((lead ^ pair) & (0U - is_pair));
        const unsigned is_malformed = static_cast<unsigned>(lead - 0xC2U >= 0xE0U - 0xC2U) |
                                      static_cast<unsigned>((next & 0xC0U) != 0x80);
        if (((is_pair & is_malformed) | is_special(unit) | is_no_run(unit)) != 0) return 0;
        to[count++] = lowers ? scl::impl::SMALL_LETTERS[unit] : static_cast<char16_t>(unit);
        at += 1 + is_pair;
    }
    return at == text.end ? count : 0; // else the last character is cut
}

} // namespace txt
