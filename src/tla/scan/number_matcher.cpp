#include "tla/scan/number_matcher.hpp"

#include "txt/txt_token_types.hpp"

#include <algorithm>

namespace tla {

namespace {

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

void Number_matcher::pass_gap(std::uint32_t characters, std::uint32_t line_ends, bool is_clean) {
    if (!is_clean) break_off();
    gap_characters_ += characters;
    gap_line_ends_ += line_ends;
}

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

void Number_matcher::add_group(const Number_word& word, std::u16string_view text,
                               Text_place first) {
    const bool joins = gap_characters_ >= 1 && gap_characters_ <= MOST_GAP_CHARACTERS &&
                       gap_line_ends_ <= MOST_GAP_LINE_ENDS;
    if (!joins) clear_groups();
    groups_.push_back({first, number_, text_.size(), word.characters, word.has_digit});
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
    }
    has_digits_ = std::ranges::any_of(groups_, &Group::has_digit);
}

// A beginning goes on behind its last word, with an item that begins with the next word.
void Number_matcher::drop_beginnings() {
    const std::uint64_t oldest = groups_.empty() ? number_ : groups_.front().number;
    std::erase_if(open_, [oldest](const Beginning& b) { return b.last_number + 1 < oldest; });
}

void Number_matcher::read(const Chunk_words& words, const Chunk_place& place,
                          const Scan_tables& tables, const Take& take) {
    place_ = &place;
    tables_ = &tables;
    take_ = &take;
    const std::u16string_view text = words.number_text;
    for (const Number_word& word : words.number_words) {
        pass_gap(word.gap_characters, word.gap_line_ends, word.gap_is_clean);
        read_word(word, text.substr(word.text.begin, word.text.end - word.text.begin));
    }
    pass_gap(words.tail_characters, words.tail_line_ends, words.tail_is_clean);
    for (const Chunk_token& word : words.written_numbers) {
        const std::uint64_t hash =
            hashes_.extended(hashes_.start(Value_kind::number), word.value);
        if (!tables.ask(hash).is_value) continue;
        const Text_place first = place.first_of(word.span);
        take({hash, first, place.last_word_of(word.span), place.end_of(word.span),
              place.line_at(first.byte), Value_kind::number});
    }
}

void Number_matcher::read_word(const Number_word& word, std::u16string_view text) {
    span_ = word.span;
    const Text_place first = place_->first_of(word.span);
    if (word.is_group) {
        add_group(word, text, first);
    } else {
        clear_groups();
    }
    for (std::size_t i = 0; i < word.value_count; ++i) {
        read_item({first, number_, false}, word.values[i]);
    }
    if (word.is_group) read_stretches();
    gap_characters_ = 0;
    gap_line_ends_ = 0;
    ++number_;
    drop_beginnings();
}

// Those that end with the last group.
void Number_matcher::read_stretches() {
    std::uint64_t characters = groups_.back().characters;
    for (std::size_t i = groups_.size() - 1; i > 0; --i) {
        characters += groups_[i - 1].characters;
        if (characters > MOST_CHARACTERS) return;
        if (!groups_[i - 1].has_digit && !groups_.back().has_digit) continue;
        stretch_.assign(text_, groups_[i - 1].text);
        read_stretch(i - 1, stretch_);
    }
}

void Number_matcher::read_stretch(std::size_t first_group, std::u16string& text) {
    const Group& group = groups_[first_group];
    const Item item{group.first, group.number, true};
    const auto change = [&text](char16_t first, char16_t last, int by) {
        bool changes = false;
        for (char16_t& unit : text) {
            if (unit < first || unit > last) continue;
            unit = static_cast<char16_t>(unit + by);
            changes = true;
        }
        return changes;
    };
    constexpr int TO_CAPITAL = 'A' - 'a';
    read_item(item, txt::txt_token_value(std::u16string_view(text)));
    const bool has_small = change(u'a', u'z', TO_CAPITAL);
    if (has_small) read_item(item, txt::txt_token_value(std::u16string_view(text)));
    // Where all letters were small, this is the stretch as it is once more.
    if (change(u'A', u'Z', -TO_CAPITAL)) {
        read_item(item, txt::txt_token_value(std::u16string_view(text)));
    }
}

void Number_matcher::read_item(const Item& item, std::uint64_t value) {
    const std::size_t open = open_.size();
    for (std::size_t i = 0; i < open; ++i) {
        if (open_[i].last_number + 1 == item.first_number && open_[i].last_number != number_) {
            extend(Beginning(open_[i]), item, value);
        }
    }
    Beginning alone{hashes_.start(Value_kind::number), item.first, 0, 0, 0, false};
    extend(alone, item, value);
}

void Number_matcher::extend(const Beginning& beginning, const Item& item, std::uint64_t value) {
    Beginning extended = beginning;
    extended.hash = hashes_.extended(beginning.hash, value);
    extended.last_number = number_;
    extended.has_stretch |= item.is_stretch;
    ++extended.values;
    if (extended.has_stretch && extended.values > MOST_VALUES) return;
    const Value_filter::Answer found = tables_->ask(extended.hash);
    if (!found.any()) return;
    if (extended.values == 1) extended.line = place_->line_at(item.first.byte);
    if (found.is_value) {
        (*take_)({extended.hash, extended.first, place_->last_word_of(span_),
                  place_->end_of(span_), extended.line, Value_kind::number});
    }
    const bool is_known = std::ranges::any_of(open_, [&extended](const Beginning& b) {
        return b.last_number == extended.last_number && b.hash == extended.hash &&
               b.first.byte == extended.first.byte && b.has_stretch == extended.has_stretch;
    });
    if (found.begins_one && !is_known) open_.push_back(extended);
}

} // namespace tla
