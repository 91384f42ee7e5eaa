#include "scl/text/composer.hpp"

#include "scl/text/scl_utf.hpp"
#include "scl/text/unicode_tables.hpp"

#include <algorithm>
#include <tuple>

namespace scl::impl {

namespace {

// Segments hardly ever have more characters, so that most texts need one allocation only.
constexpr std::size_t USUAL_CHARACTERS = 16;

// The numbers of section 3.12. Hangul syllables are computed: a table would have 11,172 rows.
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

// The primary composite of two characters, or 0.
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

// The decomposition of a code point that has one.
const Decomposition& decomposition(char32_t code_point) {
    return *std::lower_bound(
        DECOMPOSITIONS.begin(), DECOMPOSITIONS.end(), code_point,
        [](const Decomposition& a, char32_t composed) { return a.composed < composed; });
}

} // namespace

void Composer::compose(std::u16string_view segment, std::u16string& out) {
    characters_.clear(); // its memory serves all segments of a text
    characters_.reserve(USUAL_CHARACTERS);
    for (std::size_t at = 0; at < segment.size();) {
        decompose(scl_utf16_next(segment, at));
    }
    order_marks();
    recompose();
    for (const Character& each : characters_) {
        char16_t units[2] = {};
        out.append(units, scl_utf16_put(units, each.code_point));
    }
}

void Composer::add(char32_t code_point) {
    characters_.push_back({code_point, properties_of(code_point).combining_class});
}

void Composer::decompose(char32_t code_point) {
    if (is_hangul_syllable(code_point)) {
        const char32_t index = code_point - HANGUL_BASE;
        add(LEAD_BASE + index / (VOWELS * TAILS));
        add(VOWEL_BASE + index / TAILS % VOWELS);
        if (index % TAILS != 0) add(TAIL_BASE + index % TAILS);
    } else if (properties_of(code_point).decomposes) {
        // The tables hold one step each; the full decomposition comes by taking them in turn.
        const Decomposition& parts = decomposition(code_point);
        // The second part never decomposes further; the generator makes sure of it.
        decompose(parts.first);
        if (parts.second != 0) add(parts.second);
    } else {
        add(code_point);
    }
}

// The canonical ordering: each run of marks is sorted by combining class, equal ones in the order
// they have. A run is seldom out of order, and a stable sort takes memory.
void Composer::order_marks() {
    const auto is_starter = [](const Character& c) { return c.combining_class == 0; };
    const auto is_lower = [](const Character& a, const Character& b) {
        return a.combining_class < b.combining_class;
    };
    for (auto run = characters_.begin(); run != characters_.end();) {
        run = std::find_if_not(run, characters_.end(), is_starter);
        const auto end = std::find_if(run, characters_.end(), is_starter);
        if (!std::is_sorted(run, end, is_lower)) std::stable_sort(run, end, is_lower);
        run = end;
    }
}

// The canonical composition, in place: a character goes into the last starter when the two form a
// composite and no character kept between them is a starter or of an equal or higher class.
void Composer::recompose() {
    std::size_t kept = 0;
    std::size_t after_starter = 0; // the place after the last starter; 0 while there is none
    for (const Character each : characters_) {
        const bool reaches_starter =
            after_starter != 0 &&
            (kept == after_starter || characters_[kept - 1].combining_class < each.combining_class);
        if (reaches_starter) {
            char32_t& starter = characters_[after_starter - 1].code_point;
            if (const char32_t composed = compose_pair(starter, each.code_point)) {
                starter = composed;
                continue;
            }
        }
        characters_[kept++] = each;
        if (each.combining_class == 0) after_starter = kept;
    }
    characters_.resize(kept);
}

} // namespace scl::impl
