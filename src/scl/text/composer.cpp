#include "scl/text/composer.hpp"

#include "scl/text/scl_utf.hpp"
#include "scl/text/unicode_tables.hpp"

#include <algorithm>
#include <tuple>

namespace scl::impl {

namespace {

// Hangul syllables are computed (Unicode Standard, section 3.12): a table would have 11,172 rows.
constexpr char32_t HANGUL_BASE = 0xAC00;
constexpr char32_t LEAD_BASE = 0x1100;
constexpr char32_t VOWEL_BASE = 0x1161;
constexpr char32_t TAIL_BASE = 0x11A7; // one below the first tail, as number 0 means no tail
constexpr char32_t LEADS = 19;
constexpr char32_t VOWELS = 21;
constexpr char32_t TAILS = 28;

bool is_hangul_syllable(char32_t code_point) {
    return code_point - HANGUL_BASE < LEADS * VOWELS * TAILS;
}

// The syllable of a lead and a vowel, or of a syllable without tail and a tail; else 0.
char32_t compose_hangul(char32_t first, char32_t second) {
    if (first - LEAD_BASE < LEADS && second - VOWEL_BASE < VOWELS) {
        return HANGUL_BASE + ((first - LEAD_BASE) * VOWELS + second - VOWEL_BASE) * TAILS;
    }
    const bool takes_tail = is_hangul_syllable(first) && (first - HANGUL_BASE) % TAILS == 0;
    const bool is_tail = second > TAIL_BASE && second < TAIL_BASE + TAILS;
    return takes_tail && is_tail ? first + (second - TAIL_BASE) : 0;
}

// The decomposition of a code point that has one.
const Decomposition& decomposition(char32_t code_point) {
    return *std::lower_bound(
        DECOMPOSITIONS.begin(), DECOMPOSITIONS.end(), code_point,
        [](const Decomposition& a, char32_t composed) { return a.composed < composed; });
}

// Hands the parts of a code point's canonical decomposition to `use`, in order.
template <typename Use>
void decompose(char32_t code_point, Use& use) {
    if (is_hangul_syllable(code_point)) {
        const char32_t index = code_point - HANGUL_BASE;
        use(LEAD_BASE + index / (VOWELS * TAILS));
        use(VOWEL_BASE + index / TAILS % VOWELS);
        if (index % TAILS != 0) use(TAIL_BASE + index % TAILS);
    } else if (properties_of(code_point).decomposes) {
        // The tables hold one step each; the full decomposition comes by taking them in turn.
        const Decomposition& parts = decomposition(code_point);
        // The second part never decomposes further; the generator makes sure of it.
        decompose(parts.first, use);
        if (parts.second != 0) use(parts.second);
    } else {
        use(code_point);
    }
}

template <typename Use>
void decompose_all(std::u16string_view text, Use use) {
    for (std::size_t at = 0; at < text.size();) {
        decompose(scl_utf16_next(text, at), use);
    }
}

// Whether a character is a mark or decomposes into marks only. Looking at the first part is enough:
// a decomposition that has a starter has it in front.
bool is_mark(char32_t code_point) {
    const Properties& properties = properties_of(code_point);
    if (!properties.decomposes) return properties.combining_class != 0;
    return is_mark(decomposition(code_point).first);
}

// The end of the group that starts at `at`: one character and the marks behind it. The character's
// own marks, once decomposed, are sorted together with those.
std::size_t group_end(std::u16string_view text, std::size_t at) {
    std::size_t after = at;
    (void)scl_utf16_next(text, after);
    do {
        at = after;
    } while (at < text.size() && is_mark(scl_utf16_next(text, after)));
    return at;
}

} // namespace

char32_t compose_pair(char32_t first, char32_t second) {
    // Most characters never come second in a composite: the search is spared them.
    if (!properties_of(second).composes_back) return 0;
    if (const char32_t syllable = compose_hangul(first, second)) return syllable;
    const auto found = std::lower_bound(
        COMPOSITIONS.begin(), COMPOSITIONS.end(), std::tie(first, second),
        [](const Decomposition& a, const auto& b) { return std::tie(a.first, a.second) < b; });
    const bool matches =
        found != COMPOSITIONS.end() && found->first == first && found->second == second;
    return matches ? found->composed : 0;
}

// A letter and one mark, as in most decomposed text, need no ordering. Tested by all cases of
// Normalize.* with both, since a longer segment takes the general way.
bool Composer::compose_two(std::u16string_view segment) {
    if (segment.size() != 2) return false;
    const Properties& first = properties_of(segment[0]);
    const bool is_starter = first.combining_class == 0 && !first.decomposes;
    if (!is_starter || properties_of(segment[1]).decomposes) return false;
    const char32_t composed = compose_pair(segment[0], segment[1]);
    if (composed == 0) return false;
    append(composed);
    return true;
}

void Composer::compose(std::u16string_view segment) {
    if (compose_two(segment)) return;
    has_starter_ = false;
    for (std::size_t at = 0; at < segment.size();) {
        const std::size_t end = group_end(segment, at);
        compose_group(segment.substr(at, end - at));
        at = end;
    }
}

std::size_t Composer::most_units(std::u16string_view text) {
    std::size_t units = 0;
    decompose_all(text, [&](char32_t part) { units += part > 0xFFFF ? 2 : 1; });
    return units;
}

// The Canonical Ordering Algorithm (Unicode Standard, section 3.11, D109): marks by combining
// class, equal classes in the order of the text. One pass for each class present (of about 55)
// needs no memory and no sorting, however many marks a hostile text has.
void Composer::compose_group(std::u16string_view group) {
    std::uint8_t next = put_class(group, 0);
    while (next != 0) {
        next = put_class(group, next);
    }
}

// Puts the characters of one class; returns the next higher class in the group, or 0.
std::uint8_t Composer::put_class(std::u16string_view group, std::uint8_t wanted) {
    constexpr unsigned NONE = 256;
    unsigned next = NONE;
    decompose_all(group, [&](char32_t part) {
        const std::uint8_t combining_class = properties_of(part).combining_class;
        if (combining_class == wanted) {
            put(part, combining_class);
        } else if (combining_class > wanted) {
            next = std::min<unsigned>(next, combining_class);
        }
    });
    return static_cast<std::uint8_t>(next); // none is 0 again
}

// The Canonical Composition Algorithm (Unicode Standard, section 3.11, D117): a character is
// composed with the last starter if the two have a primary composite and no character between them
// blocks it, which a starter does, and one of an equal or higher class.
void Composer::put(char32_t code_point, std::uint8_t combining_class) {
    if (has_starter_ && (last_class_ == 0 || last_class_ < combining_class)) {
        if (const char32_t composed = compose_pair(starter_, code_point)) {
            return replace_starter(composed);
        }
    }
    if (combining_class == 0) {
        has_starter_ = true;
        starter_ = code_point;
        starter_at_ = out_.size();
    }
    last_class_ = combining_class;
    append(code_point);
}

void Composer::replace_starter(char32_t composed) {
    char16_t units[2] = {};
    const auto before = static_cast<std::size_t>(scl_utf16_put(units, starter_) - units);
    const auto after = static_cast<std::size_t>(scl_utf16_put(units, composed) - units);
    out_.replace(starter_at_, before, units, after);
    starter_ = composed;
}

void Composer::append(char32_t code_point) {
    char16_t units[2] = {};
    out_.append(units, scl_utf16_put(units, code_point));
}

} // namespace scl::impl
