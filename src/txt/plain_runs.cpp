#include "txt/plain_runs.hpp"

#include "scl/crc/scl_crc64.hpp"
#include "scl/text/composer.hpp"
#include "scl/text/unicode_tables.hpp"

#include <algorithm>
#include <array>

namespace txt {

namespace {

// The letter that a letter and a mark behind it become, when that is plain, too; else 0. Several
// marks need no ordering here: each letter on the way is equivalent to all that it was made of.
unsigned composed(unsigned letter, unsigned mark, const scl::impl::Plain_units& plain) {
    const char32_t unit = letter == 0 ? 0 : scl::impl::compose_pair(letter, mark);
    return unit < plain.size() && plain[unit] != 0 ? static_cast<unsigned>(unit) : 0;
}

// The units of a plain run, at most TXT_PLAIN_RUN_BYTES of them; gives their number, or 0.
//
// Computes with each character's length and faults. Branches would often be mispredicted, since
// names such as "Müller" change between one byte and two. The byte behind the last one may be read.
std::size_t convert(scl::Scl_text_span<char> text, const scl::impl::Plain_units& plain,
                    char16_t* to) {
    std::size_t count = 0;
    unsigned letter = 0; // the last one as written: only a composed letter has its small form
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
        if (plain[unit] != 0) {
            letter = unit;
            ++count;
        } else {
            letter = composed(letter, unit, plain);
            if (letter == 0) return 0;
        }
        to[count - 1] = plain[letter];
        at += 1 + is_pair;
    }
    return at == text.end ? count : 0; // else the last character is cut
}

} // namespace

std::uint64_t txt_plain_run_value(scl::Scl_text_span<char> text, bool lowers) {
    if (text.size() > TXT_PLAIN_RUN_BYTES) return 0;
    constexpr std::size_t ZEROS = scl::Scl_crc64::WIDENED_BLOCK;
    std::array<char16_t, ZEROS + TXT_PLAIN_RUN_BYTES> room; // NOLINT: not all of it is needed
    std::fill_n(room.begin(), ZEROS, u'\0');
    char16_t* const units = room.data() + ZEROS;
    const std::size_t count =
        convert(text, lowers ? scl::impl::PLAIN_SMALL_UNITS : scl::impl::PLAIN_UNITS, units);
    if (count == 0 || count > ZEROS) return 0;
    return scl::Scl_crc64::calculate_behind_zeros(units + count, count);
}

} // namespace txt
