#include "txt/word_rules.hpp"

#include <algorithm>

namespace txt::impl {

namespace {

using Wb = scl::Scl_word_break;

constexpr std::size_t PROPERTIES = 21; // values of Wb

// What the rules need to know of the text before a position. For "3.1" before the 1: `before` is
// mid_num, `beyond` is numeric, and `awaiting` is true, since only the 1 makes the stop part of the
// number (WB11, WB12).
struct Context {
    Wb before;         // the last character that WB4 does not skip
    Wb beyond;         // the one before that, when `before` is a mid character joined to it
    bool after_joiner; // the character right before is a ZWJ, skipped or not
    bool awaiting;     // `before` was only looked at: it belongs to the segment if the next fits

    constexpr bool operator==(const Context&) const = default;
};

// The classes that several rules name, each as the annex names it.
constexpr bool ends_line(Wb p) {
    return p == Wb::newline || p == Wb::cr || p == Wb::lf;
}

constexpr bool is_pictographic(Wb p) {
    return p == Wb::pictographic || p == Wb::aletter_pictographic;
}

constexpr bool is_skipped(Wb p) {
    return p == Wb::extend || p == Wb::format || p == Wb::zwj;
}

constexpr bool is_ahletter(Wb p) {
    return p == Wb::aletter || p == Wb::aletter_pictographic || p == Wb::hebrew_letter;
}

// MidLetter and MidNumLetQ.
constexpr bool is_mid_letter(Wb p) {
    return p == Wb::mid_letter || p == Wb::mid_num_let || p == Wb::single_quote;
}

// MidNum and MidNumLetQ.
constexpr bool is_mid_num(Wb p) {
    return p == Wb::mid_num || p == Wb::mid_num_let || p == Wb::single_quote;
}

// WB13a: what a connector such as `_` may follow.
constexpr bool takes_connector(Wb p) {
    return is_ahletter(p) || p == Wb::numeric || p == Wb::katakana || p == Wb::extend_num_let;
}

// WB13b: what may follow a connector.
constexpr bool follows_connector(Wb p) {
    return is_ahletter(p) || p == Wb::numeric || p == Wb::katakana;
}

// The rules that look past a mid character have two halves: WB6 with WB7, WB7b with WB7c, WB12 with
// WB11. Here the second halves, for the character after the mid character.
constexpr bool completes(const Context& c, Wb after) {
    const Wb beyond = c.beyond;
    const Wb mid = c.before;
    if (is_ahletter(beyond) && is_mid_letter(mid) && is_ahletter(after)) return true;   // WB7
    if (beyond == Wb::hebrew_letter && mid == Wb::double_quote) return after == beyond; // WB7c
    if (beyond == Wb::numeric && is_mid_num(mid) && after == Wb::numeric) return true;  // WB11
    return false;
}

// The first rule that fits decides. WB7a comes before WB6: where both fit, it needs no look ahead.
// WB15 and WB16 need no count of indicators: after a complete pair, `before` is no regional
// indicator (after_join).
constexpr Word_action decide(const Context& c, Wb after) {
    using enum Word_action;
    const Wb before = c.before;
    if (before == Wb::cr && after == Wb::lf) return join;                      // WB3
    if (ends_line(before)) return part;                                        // WB3a
    if (ends_line(after)) return part;                                         // WB3b
    if (c.after_joiner && is_pictographic(after)) return join;                 // WB3c
    if (before == Wb::wsegspace && after == Wb::wsegspace) return join;        // WB3d
    if (is_skipped(after)) return join;                                        // WB4
    if (is_ahletter(before) && is_ahletter(after)) return join;                // WB5
    if (before == Wb::hebrew_letter && after == Wb::single_quote) return join; // WB7a
    if (is_ahletter(before) && is_mid_letter(after)) return look;              // WB6
    if (before == Wb::hebrew_letter && after == Wb::double_quote) return look; // WB7b
    if (completes(c, after)) return join;                                      // 7, 7c, 11
    if (before == Wb::numeric && after == Wb::numeric) return join;            // WB8
    if (is_ahletter(before) && after == Wb::numeric) return join;              // WB9
    if (before == Wb::numeric && is_ahletter(after)) return join;              // WB10
    if (before == Wb::numeric && is_mid_num(after)) return look;               // WB12
    if (before == Wb::katakana && after == Wb::katakana) return join;          // WB13
    if (takes_connector(before) && after == Wb::extend_num_let) return join;   // WB13a
    if (before == Wb::extend_num_let && follows_connector(after)) return join; // WB13b
    if (before == Wb::regional_indicator && after == before) return join;      // WB15, WB16
    return part;                                                               // WB999
}

// As `before`, properties that the rules treat alike are one, which keeps the table small.
constexpr Wb merged(Wb p) {
    if (p == Wb::aletter_pictographic) return Wb::aletter;
    if (p == Wb::newline) return Wb::lf;
    const bool asked =
        takes_connector(p) || ends_line(p) || p == Wb::wsegspace || p == Wb::regional_indicator;
    return asked ? p : Wb::other;
}

// The context after one character with nothing that matters before it.
constexpr Context first(Wb p) {
    return {merged(p), Wb::other, p == Wb::zwj, false};
}

// The context after a mid character. It is awaiting, except after a Hebrew letter and a single
// quote, which WB7a joins at once.
constexpr Context after_mid(Wb before, Wb mid) {
    if (mid == Wb::double_quote) return {mid, before, false, true};
    if (before == Wb::numeric) return {Wb::mid_num, before, false, true};
    const bool settled = before == Wb::hebrew_letter && mid == Wb::single_quote;
    return {Wb::mid_letter, Wb::aletter, false, !settled};
}

constexpr Context after_join(const Context& c, Wb joined) {
    if (is_skipped(joined)) {
        const bool apart = c.before == Wb::wsegspace; // WB3d wants its two side by side
        return {apart ? Wb::other : c.before, c.beyond, joined == Wb::zwj, c.awaiting};
    }
    if (joined == Wb::regional_indicator) return first(Wb::other); // the pair is complete
    if (joined == Wb::single_quote) return after_mid(c.before, joined);
    return first(joined);
}

constexpr std::array CONTEXTS{
    first(Wb::other),
    first(Wb::aletter),
    first(Wb::hebrew_letter),
    first(Wb::katakana),
    first(Wb::numeric),
    first(Wb::extend_num_let),
    first(Wb::wsegspace),
    first(Wb::cr),
    first(Wb::lf),
    first(Wb::regional_indicator),
    after_mid(Wb::hebrew_letter, Wb::single_quote),
    after_mid(Wb::aletter, Wb::mid_letter),
    after_mid(Wb::hebrew_letter, Wb::double_quote),
    after_mid(Wb::numeric, Wb::mid_num),
};

// The rows in their order: START; CUT; one for each awaiting context, in which its mid character,
// so far only looked at, is taken; then two for each context, without and with a ZWJ right before.
constexpr std::size_t AWAITING = 3;
constexpr std::size_t FIRST_AWAITING = CONTEXTS.size() - AWAITING;
constexpr std::size_t FIRST_TAKE_ROW = 2;
constexpr std::size_t FIRST_CONTEXT_ROW = FIRST_TAKE_ROW + AWAITING;
static_assert(WORD_ROWS == FIRST_CONTEXT_ROW + 2 * CONTEXTS.size());

// The index of a context among those above, whether a ZWJ is before it or not.
constexpr std::size_t context_index(Context c) {
    c.after_joiner = false;
    return static_cast<std::size_t>(std::find(CONTEXTS.begin(), CONTEXTS.end(), c) -
                                    CONTEXTS.begin());
}

constexpr std::uint8_t row_of(const Context& c) {
    return static_cast<std::uint8_t>(FIRST_CONTEXT_ROW + 2 * context_index(c) +
                                     (c.after_joiner ? 1 : 0));
}

constexpr std::uint8_t take_row_of(const Context& c) {
    return static_cast<std::uint8_t>(FIRST_TAKE_ROW + context_index(c) - FIRST_AWAITING);
}

// Rolling back cuts before the mid character: it was looked at for nothing, and is read again as
// the first of its own segment.
constexpr Word_step step_from(const Context& c, Wb after) {
    using enum Word_action;
    if (c.awaiting && !is_skipped(after) && !completes(c, after)) {
        return {roll_back, WORD_ROW_CUT};
    }
    switch (decide(c, after)) {
    case join:
        return {join, row_of(after_join(c, after))};
    case look:
        return {look, take_row_of(after_mid(c.before, after))};
    default:
        return {part, WORD_ROW_START};
    }
}

// At the end of the text, a mid character that still waits is cut off as well.
constexpr void fill_context_rows(Word_steps& steps) {
    for (Context c : CONTEXTS) {
        for (const bool after_joiner : {false, true}) {
            c.after_joiner = after_joiner;
            for (std::size_t p = 0; p < PROPERTIES; ++p) {
                steps[row_of(c)][p] = step_from(c, static_cast<Wb>(p));
            }
            steps[row_of(c)][WORD_END_OF_TEXT] =
                c.awaiting ? Word_step{Word_action::roll_back, WORD_ROW_CUT}
                           : Word_step{Word_action::part, WORD_ROW_START}; // WB2
        }
    }
}

constexpr Word_steps make_steps() {
    Word_steps steps{};
    for (std::size_t p = 0; p < PROPERTIES; ++p) { // WB1
        steps[WORD_ROW_START][p] = {Word_action::start, row_of(first(static_cast<Wb>(p)))};
    }
    steps[WORD_ROW_START][WORD_END_OF_TEXT] = {Word_action::finish, WORD_ROW_START};
    steps[WORD_ROW_CUT].fill({Word_action::part, WORD_ROW_START});
    for (std::size_t i = FIRST_AWAITING; i < CONTEXTS.size(); ++i) {
        steps[take_row_of(CONTEXTS[i])].fill({Word_action::join, row_of(CONTEXTS[i])});
    }
    fill_context_rows(steps);
    return steps;
}

// Whether letters and digits that follow a row never end the segment: a run of them can then be
// taken in one step. Tested by Word_break.RandomTextsAsTheSlowModel.
constexpr bool always_joins(const std::array<Word_step, WORD_COLUMNS>& row) {
    return std::ranges::all_of(scl::SCL_WORD_RUN_PROPERTIES, [&row](Wb p) {
        return row[static_cast<std::size_t>(p)].action == Word_action::join;
    });
}

constexpr std::array<bool, WORD_ROWS> make_runs(const Word_steps& steps) {
    std::array<bool, WORD_ROWS> runs{};
    runs[WORD_ROW_START] = true;
    for (std::size_t row = FIRST_CONTEXT_ROW; row < WORD_ROWS; ++row) {
        runs[row] = always_joins(steps[row]);
    }
    return runs;
}

} // namespace

constexpr Word_steps STEPS = make_steps();
const Word_steps WORD_STEPS = STEPS;
const std::array<bool, WORD_ROWS> WORD_RUNS = make_runs(STEPS);

} // namespace txt::impl
