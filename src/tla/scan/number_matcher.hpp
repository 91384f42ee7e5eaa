#pragma once

#include "tla/scan/chunk_place.hpp"
#include "tla/scan/chunk_words.hpp"
#include "tla/scan/occurrence.hpp"
#include "tla/scan/scan_tables.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tla {

// Finds values of the kind CCNUMBER. A text gives items, which are its words and stretches of
// groups put together; a value is a sequence of items that stand one after another.
class Number_matcher {
public:
    explicit Number_matcher(const Scan_hashes& hashes) : hashes_(hashes) {}

    void start();
    // Whether chunks of no interest by themselves need not be read.
    [[nodiscard]] bool is_idle() const { return open_.empty(); }
    // Where the first of what may still go on begins.
    [[nodiscard]] std::optional<Text_place> oldest() const;

    // White space between chunks.
    void pass_space(std::string_view space) {
        if (is_at_rest()) return;
        for (const char c : space) {
            gap_line_ends_ += c == '\n' ? 1 : 0;
        }
        gap_characters_ += space.size();
    }
    // A chunk of no interest that ends in no group; while idle.
    void pass_other() {
        if (!is_at_rest()) clear_groups();
    }
    // Whether a group that comes next may end a stretch; then it has to be read.
    [[nodiscard]] bool may_end_stretch() const { return has_digits_; }
    // A chunk of no interest that is one group of letters and may end none; while idle.
    void pass_group(std::string_view letters, Text_place place);

    // Shows the token values of all items to `take`, whatever they begin.
    using Take_value = std::function<void(std::uint64_t)>;
    void gather(const Chunk_words& words, const Chunk_place& place, const Take_value& take);

    using Take = std::function<void(const Occurrence&)>;
    void read(const Chunk_words& words, const Chunk_place& place, const Scan_tables& tables,
              const Take& take);

private:
    // What a number in groups may be put together of.
    struct Group {
        Text_place first;
        std::uint64_t number; // of the word, among those that stand one after another
        std::size_t text;     // where its characters begin in text_
        std::uint32_t characters;
        bool has_digit;
        // Of the stretch from here to `valued_to` in text_: its token value as it is, with a to z
        // as capitals, with A to Z as small letters; the last two count once it has such letters.
        // They are carried on when a stretch is asked for: most groups are words of letters alone.
        std::size_t valued_to;
        std::uint64_t value;
        std::uint64_t upper;
        std::uint64_t lower;
        bool has_small;
        bool has_capital;
        std::uint64_t line; // of its first character; 0 until it is asked for
    };
    // A beginning of a value, by the number of its last word.
    struct Beginning {
        std::uint64_t hash;
        Text_place first;
        std::uint64_t line;
        std::uint64_t last_number;
        std::uint32_t values;
        bool has_stretch;
    };
    struct Item {
        Text_place first;
        std::uint64_t first_number;
        bool is_stretch;
        std::uint64_t value;
        std::uint64_t alone; // the hash of the value by itself
        std::size_t group;   // that it begins with, or NONE
    };

    static constexpr std::size_t NONE = ~std::size_t{0};

    [[nodiscard]] bool is_at_rest() const { return groups_.empty() && open_.empty(); }
    void clear_groups();
    void break_off();
    void add_group(const Number_word& word, std::u16string_view text, Text_place first);
    void drop_groups();
    void drop_beginnings();
    void read_words(const Chunk_words& words);
    void pass_gap(std::uint32_t characters, std::uint32_t line_ends, bool is_clean);
    void read_word(const Number_word& word, std::u16string_view text);
    void add_stretches();
    void carry_on(Group& group);
    void add_item(Text_place first, std::uint64_t first_number, bool is_stretch,
                  std::uint64_t value, std::size_t group);
    [[nodiscard]] std::uint64_t line_of(const Item& item);
    void read_items();
    void extend(Beginning beginning, std::uint64_t hash, const Item& item);
    [[nodiscard]] bool is_open(const Beginning& beginning) const;

    const Scan_hashes& hashes_;
    std::vector<Group> groups_;   // joined, one to the next
    std::u16string text_;         // of the groups, back to back
    bool has_digits_ = false;     // one of them
    std::vector<Beginning> open_; // by their last words
    std::uint64_t number_ = 0; // of the next word; numbers of words apart differ by more than one
    std::uint64_t gap_characters_ = 0;
    std::uint64_t gap_line_ends_ = 0;
    std::vector<Item> items_; // that end with the word that is read
    std::u16string changed_;

    // While a word is read.
    const Chunk_place* place_ = nullptr;
    const Scan_tables* tables_ = nullptr;
    const Take* take_ = nullptr;
    const Take_value* take_value_ = nullptr; // while values are gathered, and nothing else is done
    Chunk_span span_{};
};

} // namespace tla
