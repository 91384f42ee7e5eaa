#include "tla/scan/chunk_splitter.hpp"

#include <array>
#include <cstdint>

// Where a text may be cut is decided by its bytes alone, with no look at what was before: so it is
// the same wherever the pieces end in which a text comes. Too few places cost memory, one too many
// would cost a find: whatever is in doubt is no place. Tested by Scan.MakesNothingOfPieces and,
// with windows of one byte, by Scan.FindsWhatAModelFinds.
namespace tla {

namespace {

enum Byte_class : std::uint8_t { ordinary, space, high };

constexpr auto make_classes() {
    std::array<std::uint8_t, 256> classes{};
    for (std::size_t byte = 0; byte < classes.size(); ++byte) {
        const bool is_space = byte == ' ' || (byte >= '\t' && byte <= '\r');
        classes[byte] = is_space ? space : byte >= 0x80 ? high : ordinary;
    }
    return classes;
}
constexpr auto CLASSES = make_classes();

// Plain char is signed on some processors.
std::uint8_t byte_at(std::string_view text, std::size_t at) {
    return static_cast<std::uint8_t>(text[at]);
}

std::uint8_t class_at(std::string_view text, std::size_t at) {
    return CLASSES[byte_at(text, at)];
}

// Whether white space in front of it ends a chunk: its first character is neither white space nor
// attached to what is before it. Of characters beyond ASCII, those are told apart of which whole
// lead bytes are so, letters from Latin to Cyrillic and Chinese characters, and the punctuation
// that texts have most. A lead byte without its character is a stray one, which is safe as well.
bool is_safe(std::string_view text, std::size_t at) {
    const std::uint8_t lead = byte_at(text, at);
    if (lead < 0x80) return CLASSES[lead] == ordinary;
    if (lead >= 0xC3 && lead <= 0xD4) return lead != 0xCC && lead != 0xCD && lead != 0xD2;
    if (lead >= 0xE4 && lead <= 0xE9) return true;
    if (lead != 0xE2 || text.size() - at < 3) return false;
    const std::uint8_t second = byte_at(text, at + 1);
    const std::uint8_t third = byte_at(text, at + 2);
    const bool is_mark_of_punctuation =
        second == 0x80 && ((third >= 0x90 && third <= 0xA7) || (third >= 0xB0 && third <= 0xBE));
    return is_mark_of_punctuation || (second == 0x82 && third >= 0xA0 && third < 0xC0);
}

// U+4E00 to U+9FFF, by the lead byte; the few others that share it are letters of the same kind, or
// symbols.
bool is_chinese(std::string_view text, std::size_t at) {
    if (text.size() - at < 3) return false;
    const std::uint8_t lead = byte_at(text, at);
    const auto follows = [&](std::size_t by) { return (byte_at(text, at + by) & 0xC0U) == 0x80; };
    const bool is_first = lead == 0xE4 && byte_at(text, at + 1) < 0xB8; // U+4000 to U+4DFF
    return lead >= 0xE4 && lead <= 0xE9 && !is_first && follows(1) && follows(2);
}

// Marks that are always words of their own, and that no rule of the readings, of letter case or of
// normal forms looks at.
constexpr std::string_view HARD_MARKS = "!#$%&()*+-/<=>?@[\\]{|}~";

// Whether a stretch without white space may be cut there.
bool is_hard_place(std::string_view text, std::size_t at) {
    if (HARD_MARKS.find(text[at]) != HARD_MARKS.npos) return true;
    return at >= 3 && is_chinese(text, at) && is_chinese(text, at - 3);
}

// Longer chunks are cut where it costs a look at each byte.
constexpr std::size_t LONG_CHUNK = std::size_t{16} << 10;

// White space beyond ASCII belongs to chunks: it is seldom.
std::size_t skip_space(std::string_view text, std::size_t at) {
    while (at < text.size() && class_at(text, at) == space) {
        ++at;
    }
    return at;
}

// White space in front of what may join it belongs to the chunk.
std::size_t first_of_chunk(std::string_view text, std::size_t at) {
    const std::size_t begin = skip_space(text, at);
    const bool is_joined =
        begin > at && begin < text.size() && text[begin - 1] != '\n' && !is_safe(text, begin);
    return begin - (is_joined ? 1 : 0);
}

} // namespace

// Goes through white space that something joins, so that the chunk holds both.
Chunk_cut next_chunk(std::string_view text, std::size_t at) {
    const std::size_t begin = first_of_chunk(text, at);
    Chunk_cut cut{begin, begin, begin, true};
    std::size_t end = begin;
    while (end < text.size()) {
        const std::uint8_t what = class_at(text, end);
        if (what == space && end > begin) {
            cut.end = end;
            cut.next = skip_space(text, end);
            const bool is_end =
                cut.next == text.size() || text[cut.next - 1] == '\n' || is_safe(text, cut.next);
            if (is_end) return cut;
            cut.is_ascii = false;
            end = cut.next;
            continue;
        }
        if (what != ordinary) cut.is_ascii = false;
        if (end - begin >= LONG_CHUNK && is_hard_place(text, end)) break;
        ++end;
    }
    cut.end = end;
    cut.next = end;
    return cut;
}

// The last line end if there is one, as most texts have; then white space, then a hard mark. Each
// looks from the end backwards, and what was looked at before is not looked at again.
std::size_t last_cut(std::string_view text, std::size_t known) {
    const std::size_t line_end = text.substr(known).rfind('\n');
    if (line_end != text.npos) return known + line_end + 1;
    for (std::size_t at = text.size(); at > known + 1; --at) {
        const std::size_t place = at - 1;
        if (class_at(text, place - 1) == space && is_safe(text, place)) return place;
    }
    for (std::size_t at = text.size(); at > known + 1; --at) {
        if (is_hard_place(text, at - 1)) return at - 1;
    }
    return 0;
}

} // namespace tla
