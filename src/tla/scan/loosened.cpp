#include "tla/scan/loosened.hpp"

#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"
#include "tla/scan/character_sets.hpp"

#include <algorithm>
#include <cstddef>

// The order of the steps is part of the rules: apostrophes are made one before a genitive is looked
// for, and marks become blanks before it is seen what stands behind one. Tested by
// Scan.FindsWhatAModelFinds, whose model goes by code points and by the database's own categories.
namespace tla {

namespace {

constexpr char32_t APOSTROPHE = U'\'';
constexpr char32_t HYPHEN = U'-';
constexpr char32_t BLANK = U' ';
constexpr char32_t LEFT_OUT = 0;

// What each character becomes by itself.
char32_t plain_form(char32_t c) {
    switch (c) {
    case 0x00AD:
    case 0x2060:
    case 0xFEFF:
        return LEFT_OUT;
    case 0x200B:
        return BLANK;
    case 0x0060:
    case 0x00B4:
    case 0x02BC:
    case 0x2018:
    case 0x2019:
    case 0xFF07:
        return APOSTROPHE;
    case 0x2212:
    case 0xFE58:
    case 0xFE63:
    case 0xFF0D:
        return HYPHEN;
    case U'_':
        return BLANK;
    default:
        return c >= 0x2010 && c <= 0x2015 ? HYPHEN : c;
    }
}

// 0 at the front, which is of no category.
template <typename Unit>
char32_t previous(const std::basic_string<Unit>& text, std::size_t at) {
    if (at == 0) return 0;
    if constexpr (sizeof(Unit) == 1) {
        return static_cast<unsigned char>(text[at - 1]);
    } else {
        return scl::scl_utf16_previous(text, at);
    }
}

template <typename Unit>
char32_t next(const std::basic_string<Unit>& text, std::size_t at) {
    if (at >= text.size()) return 0;
    if constexpr (sizeof(Unit) == 1) {
        return static_cast<unsigned char>(text[at]);
    } else {
        return scl::scl_utf16_next(text, at);
    }
}

// What people put between words without a blank.
bool is_joiner(char32_t c) {
    return c == U'.' || c == U',' || c == U':' || c == U';';
}

// All characters that change are single units, as are those that they become.
template <typename Unit>
bool take_plain_forms(std::basic_string_view<Unit> text, Reading<Unit>& to) {
    to.clear();
    bool changes = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto unit = static_cast<std::make_unsigned_t<Unit>>(text[at]);
        const char32_t form = plain_form(unit);
        changes |= form != unit;
        if (form == LEFT_OUT && unit != 0) continue;
        to.text += static_cast<Unit>(form);
        to.origins.push_back(static_cast<std::uint32_t>(at));
    }
    return changes;
}

// What stands around a mark never changes here, so that the order makes no difference.
template <typename Unit>
bool blank_joiners(std::basic_string<Unit>& text) {
    bool changes = false;
    for (std::size_t at = 1; at + 1 < text.size(); ++at) {
        if (!is_joiner(static_cast<std::make_unsigned_t<Unit>>(text[at]))) continue;
        const char32_t before = previous(text, at);
        const char32_t behind = next(text, at + 1);
        if ((is_letter(before) || is_mark(before) || is_digit(before)) &&
            (is_letter(behind) || is_digit(behind))) {
            text[at] = static_cast<Unit>(BLANK);
            changes = true;
        }
    }
    return changes;
}

// Of a word that goes on behind, as in "l'son", it is none.
template <typename Unit>
bool is_genitive(const std::basic_string<Unit>& text, std::size_t at) {
    if (text[at] != static_cast<Unit>(APOSTROPHE) || at + 1 >= text.size()) return false;
    if (text[at + 1] != Unit{'s'} && text[at + 1] != Unit{'S'}) return false;
    const char32_t before = previous(text, at);
    if (!is_letter(before) && !is_mark(before)) return false;
    const char32_t behind = next(text, at + 2);
    return !is_letter(behind) && !is_mark(behind) && !is_digit(behind) && behind != APOSTROPHE;
}

// Which ones there are is seen before any is removed.
template <typename Unit>
bool remove_genitives(Reading<Unit>& reading) {
    std::vector<std::size_t> places;
    for (std::size_t at = 0; at < reading.text.size(); ++at) {
        if (is_genitive(reading.text, at)) places.push_back(at);
    }
    if (places.empty()) return false;
    std::size_t to = places.front();
    std::size_t next_place = 0;
    for (std::size_t at = to; at < reading.text.size();) {
        if (next_place < places.size() && places[next_place] == at) {
            ++next_place;
            at += 2;
            continue;
        }
        reading.text[to] = reading.text[at];
        reading.origins[to++] = reading.origins[at++];
    }
    reading.text.resize(to);
    reading.origins.resize(to);
    return true;
}

// One after the other: each sees what the one before has left.
template <typename Unit>
bool loosen_units(std::basic_string_view<Unit> text, Reading<Unit>& to) {
    bool changes = take_plain_forms(text, to);
    changes |= blank_joiners(to.text);
    changes |= remove_genitives(to);
    return changes;
}

// No apostrophe is a letter, so that blanks do not change what others stand between.
template <typename Unit>
bool part_units(std::basic_string<Unit>& text) {
    bool changes = false;
    for (std::size_t at = 1; at + 1 < text.size(); ++at) {
        if (text[at] != static_cast<Unit>(APOSTROPHE)) continue;
        const char32_t before = previous(text, at);
        if ((is_letter(before) || is_mark(before)) && is_letter(next(text, at + 1))) {
            text[at] = static_cast<Unit>(BLANK);
            changes = true;
        }
    }
    return changes;
}

} // namespace

bool loosen(std::string_view text, Reading<char>& to) {
    // Of most words one look at the bytes tells that there is nothing to do.
    constexpr std::string_view CHANGED = "`_.,:;'";
    if (text.find_first_of(CHANGED) == std::string_view::npos) return false;
    return loosen_units(text, to);
}

bool loosen(std::u16string_view text, Reading<char16_t>& to) {
    return loosen_units(text, to);
}

bool part(std::string& loosened) {
    return part_units(loosened);
}

bool part(std::u16string& loosened) {
    return part_units(loosened);
}

} // namespace tla
