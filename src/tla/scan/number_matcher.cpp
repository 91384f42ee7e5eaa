#include "tla/scan/number_matcher.hpp"

#include "txt/txt_token_types.hpp"

#include <algorithm>

// Most words of a text are groups or nothing, and belong to no number. So groups are only
// collected, and their values worked out when one with a digit comes: every stretch begins or ends
// with one. Tested by Scan.FindsWhatAModelFinds and Scan.KeepsTheBoundsOfNumbers.
namespace tla {

namespace {

// These bounds are rules, told in docs/scanning.md.
// What joins two groups.
constexpr std::uint64_t MOST_GAP_CHARACTERS = 8;
constexpr std::uint64_t MOST_GAP_LINE_ENDS = 1;
// Of a stretch.
constexpr std::uint64_t MOST_CHARACTERS = 64;
// In a value of more token values only words are items.
constexpr std::uint32_t MOST_VALUES = 16;

} // namespace

void Number_matcher::start() {
    clear_groups();
    open_.clear();
    number_ = 0;
    gap_characters_ = 0;
    gap_line_ends_ = 0;
}

void Number_matcher::clear_groups() {
    groups_.clear();
    text_.clear();
    has_digits_ = false;
}

// Groups count: the text of a stretch is quoted from its first one.
std::optional<Text_place> Number_matcher::oldest() const {
    std::optional<Text_place> oldest;
    if (!groups_.empty()) oldest = groups_.front().first;
    for (const Beginning& beginning : open_) {
        if (!oldest || beginning.first.byte < oldest->byte) oldest = beginning.first;
    }
    return oldest;
}

// Nothing that stands before goes on behind.
void Number_matcher::break_off() {
    clear_groups();
    open_.clear();
    ++number_;
}

// Only blanks and hyphens may stand between the items of a value.
void Number_matcher::pass_gap(std::uint32_t characters, std::uint32_t line_ends, bool is_clean) {
    if (!is_clean) break_off();
    gap_characters_ += characters;
    gap_line_ends_ += line_ends;
}

// A group that ends no stretch may still begin one.
void Number_matcher::pass_group(std::string_view letters, Text_place place) {
    Number_word word{};
    word.characters = static_cast<std::uint32_t>(letters.size());
    char16_t text[MOST_CHARACTERS];
    std::ranges::copy(letters, std::begin(text));
    add_group(word, {text, letters.size()}, place);
    gap_characters_ = 0;
    gap_line_ends_ = 0;
    ++number_;
}

// Groups too far apart for one stretch begin anew.
void Number_matcher::add_group(const Number_word& word, std::u16string_view text,
                               Text_place first) {
    const bool joins = gap_characters_ >= 1 && gap_characters_ <= MOST_GAP_CHARACTERS &&
                       gap_line_ends_ <= MOST_GAP_LINE_ENDS;
    if (!joins) clear_groups();
    groups_.push_back({first, number_, text_.size(), word.characters, word.has_digit, text_.size(),
                       0, 0, 0, false, false, 0});
    text_ += text;
    has_digits_ |= word.has_digit;
    drop_groups();
}

// Those in front that would make every stretch too long.
void Number_matcher::drop_groups() {
    std::uint64_t characters = 0;
    std::size_t first = groups_.size();
    while (first > 0 && characters + groups_[first - 1].characters <= MOST_CHARACTERS) {
        characters += groups_[--first].characters;
    }
    // The last one stays, for what follows to see that it is joined to something; seldom, as it
    // moves the others.
    first = std::min(first, groups_.size() - 1);
    if (first == 0 || (first < MOST_CHARACTERS && first + 1 < groups_.size())) return;
    const std::size_t text = groups_[first].text;
    text_.erase(0, text);
    groups_.erase(groups_.begin(), groups_.begin() + static_cast<std::ptrdiff_t>(first));
    for (Group& group : groups_) {
        group.text -= text;
        group.valued_to -= text;
    }
    has_digits_ = std::ranges::any_of(groups_, &Group::has_digit);
}

// A beginning goes on behind its last word, with an item that begins with the next word.
void Number_matcher::drop_beginnings() {
    const std::uint64_t oldest = groups_.empty() ? number_ : groups_.front().number;
    std::erase_if(open_, [oldest](const Beginning& b) { return b.last_number + 1 < oldest; });
}

// Words as written are looked up apart, where the loosened text differs: a value of one token may
// be found there alone.
void Number_matcher::read(const Chunk_words& words, const Chunk_place& place,
                          const Scan_tables& tables, const Take& take) {
    place_ = &place;
    tables_ = &tables;
    take_ = &take;
    read_words(words);
    for (const Chunk_token& word : words.written_numbers) {
        // Such a word can only be a value of one token: what stands around it was looked at in the
        // loosened text.
        const std::uint64_t hash = hashes_.extended(hashes_.start(Value_kind::number), word.value);
        if (!tables.ask(hash).is_value) continue;
        const Text_place first = place.first_of(word.span);
        take({hash, first, place.last_word_of(word.span), place.end_of(word.span),
              place.line_at(first.byte), Value_kind::number});
    }
}

// The same walk without tables, for the values of a short text.
void Number_matcher::gather(const Chunk_words& words, const Chunk_place& place,
                            const Take_value& take) {
    place_ = &place;
    take_value_ = &take;
    read_words(words);
    take_value_ = nullptr;
    for (const Chunk_token& word : words.written_numbers) {
        take(word.value);
    }
}

// In the text's order, as what stands between two words decides whether they join.
void Number_matcher::read_words(const Chunk_words& words) {
    const std::u16string_view text = words.number_text;
    for (const Number_word& word : words.number_words) {
        pass_gap(word.gap_characters, word.gap_line_ends, word.gap_is_clean);
        read_word(word, text.substr(word.text.begin, word.text.end - word.text.begin));
    }
    pass_gap(words.tail_characters, words.tail_line_ends, words.tail_is_clean);
}

// The items that end with this word: the word itself in up to three forms, then stretches.
void Number_matcher::read_word(const Number_word& word, std::u16string_view text) {
    span_ = word.span;
    const Text_place first = place_->first_of(word.span);
    if (word.is_group) {
        add_group(word, text, first);
    } else {
        clear_groups();
    }
    items_.clear();
    for (std::size_t i = 0; i < word.value_count; ++i) {
        add_item(first, number_, false, word.values[i], word.is_group ? groups_.size() - 1 : NONE);
    }
    if (word.is_group) add_stretches();
    read_items();
    gap_characters_ = 0;
    gap_line_ends_ = 0;
    ++number_;
    drop_beginnings();
}

// Those that end with the last group.
void Number_matcher::add_stretches() {
    std::uint64_t characters = groups_.back().characters;
    for (std::size_t i = groups_.size() - 1; i > 0; --i) {
        Group& group = groups_[i - 1];
        characters += group.characters;
        if (characters > MOST_CHARACTERS) return;
        if (!group.has_digit && !groups_.back().has_digit) continue;
        carry_on(group);
        add_item(group.first, group.number, true, group.value, i - 1);
        if (group.has_small) add_item(group.first, group.number, true, group.upper, i - 1);
        if (group.has_capital) add_item(group.first, group.number, true, group.lower, i - 1);
    }
}

// To the last group. Up to 64 stretches end with each word, and most of each was in one that ended
// with the word before: so each character is taken into each value once.
void Number_matcher::carry_on(Group& group) {
    const std::u16string_view more = std::u16string_view(text_).substr(group.valued_to);
    group.valued_to = text_.size();
    const auto is_small = [](char16_t unit) { return unit >= u'a' && unit <= u'z'; };
    const auto is_capital = [](char16_t unit) { return unit >= u'A' && unit <= u'Z'; };
    if (!group.has_small && std::ranges::any_of(more, is_small)) {
        group.has_small = true;
        group.upper = group.value;
    }
    if (!group.has_capital && std::ranges::any_of(more, is_capital)) {
        group.has_capital = true;
        group.lower = group.value;
    }
    group.value = txt::txt_extended_value(group.value, more);
    const auto carry_form_on = [&](std::uint64_t value, auto changes, int by) {
        changed_.assign(more);
        for (char16_t& unit : changed_) {
            if (changes(unit)) unit = static_cast<char16_t>(unit + by);
        }
        return txt::txt_extended_value(value, changed_);
    };
    constexpr int TO_CAPITAL = 'A' - 'a';
    if (group.has_small) group.upper = carry_form_on(group.upper, is_small, TO_CAPITAL);
    if (group.has_capital) group.lower = carry_form_on(group.lower, is_capital, -TO_CAPITAL);
}

// Has memory bring the filter's answer while others are worked out.
void Number_matcher::add_item(Text_place first, std::uint64_t first_number, bool is_stretch,
                              std::uint64_t value, std::size_t group) {
    if (take_value_ != nullptr) return (*take_value_)(value);
    const std::uint64_t alone = hashes_.extended(hashes_.start(Value_kind::number), value);
    tables_->prefetch(alone);
    items_.push_back({first, first_number, is_stretch, value, alone, group});
}

// Beginnings are in the order of their last words, so that those in front of an item lie together.
// Items of one word are not extended by one another: `open` is fixed before.
void Number_matcher::read_items() {
    // Fixed, since items of one word do not follow one another.
    const std::size_t open = open_.size();
    for (const Item& item : items_) {
        const auto before = std::ranges::lower_bound(
            open_, item.first_number, {}, [](const Beginning& b) { return b.last_number + 1; });
        for (auto i = static_cast<std::size_t>(before - open_.begin());
             i < open && open_[i].last_number + 1 == item.first_number; ++i) {
            extend(open_[i], hashes_.extended(open_[i].hash, item.value), item);
        }
        extend({0, item.first, 0, 0, 0, false}, item.alone, item);
    }
}

// Goes on with a value, ends one, or both, as the filter says.
void Number_matcher::extend(Beginning beginning, std::uint64_t hash, const Item& item) {
    const Value_filter::Answer found = tables_->ask(hash);
    if (!found.any()) return;
    beginning.hash = hash;
    beginning.last_number = number_;
    beginning.has_stretch |= item.is_stretch;
    ++beginning.values;
    // A rule, and the reason for it: with stretches, a value of many tokens could be put together
    // in more ways than can be tried.
    if (beginning.has_stretch && beginning.values > MOST_VALUES) return;
    if (beginning.values == 1) beginning.line = line_of(item);
    if (found.is_value) {
        (*take_)({hash, beginning.first, place_->last_word_of(span_), place_->end_of(span_),
                  beginning.line, Value_kind::number});
    }
    if (found.begins_one && !is_open(beginning)) open_.push_back(beginning);
}

// Counted once for each group: items that end with many a word begin with it.
std::uint64_t Number_matcher::line_of(const Item& item) {
    if (item.group == NONE) return place_->line_at(item.first.byte);
    std::uint64_t& line = groups_[item.group].line;
    if (line == 0) line = place_->line_at(item.first.byte);
    return line;
}

// Two ways of putting a stretch together may come to the same.
bool Number_matcher::is_open(const Beginning& beginning) const {
    for (auto b = open_.rbegin(); b != open_.rend() && b->last_number == number_; ++b) {
        if (b->hash == beginning.hash && b->first.byte == beginning.first.byte &&
            b->has_stretch == beginning.has_stretch) {
            return true;
        }
    }
    return false;
}

} // namespace tla
