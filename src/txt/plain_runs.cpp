#include "txt/plain_runs.hpp"

#include "scl/text/composer.hpp"
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

// The letter that a letter and a mark behind it become, when that is plain, too; else 0. Several
// marks need no ordering here: each letter on the way is equivalent to all that it was made of.
unsigned composed(unsigned letter, unsigned mark) {
    const char32_t unit = scl::impl::compose_pair(letter, mark);
    if (unit >= scl::impl::SMALL_LETTERS.size()) return 0;
    return (is_special(unit) | is_no_run(unit)) == 0 ? static_cast<unsigned>(unit) : 0;
}

// Joins a mark with the last letter.
bool join(unsigned mark, char16_t* units, std::size_t count) {
    const unsigned letter = count == 0 ? 0 : composed(units[count - 1], mark);
    if (letter != 0) units[count - 1] = static_cast<char16_t>(letter);
    return letter != 0;
}

// At the end, since only a composed letter has its small form.
void lower(char16_t* units, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        units[i] = scl::impl::SMALL_LETTERS[units[i]];
    }
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
        if ((is_pair & is_malformed) != 0) return 0;
        if ((is_special(unit) | is_no_run(unit)) == 0) {
            to[count++] = static_cast<char16_t>(unit);
        } else if (!join(unit, to, count)) {
            return 0;
        }
        at += 1 + is_pair;
    }
    if (at != text.end) return 0; // the last character is cut
    if (lowers) lower(to, count);
    return count;
}

} // namespace txt
