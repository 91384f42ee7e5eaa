#pragma once

#include "scan_readings.hpp"
#include "small_reader.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace test {

// What is found in a text, by the rules of docs/scanning.md alone: every record, every field, every
// place, with no thought of time and without any table. Cutting words and bringing values into form
// are the library's, as they have tests of their own; so is nothing else.
class Scan_model {
public:
    struct Find {
        std::uint64_t line;
        std::uint64_t place;
        std::uint64_t length;
        std::size_t key;
        std::uint64_t record;
        std::vector<std::size_t> fields;
        bool operator==(const Find&) const = default;
    };

    // A text in UTF-8 without a mark. Keys are places among the file's fields.
    Scan_model(const Small_reader& file, const std::vector<std::size_t>& keys,
               std::string_view text);

    [[nodiscard]] std::vector<Find> finds(std::size_t least,
                                          std::optional<std::uint64_t> within) const;

    // The keys of a file, from its tables.
    [[nodiscard]] static std::vector<std::size_t> keys_of(const Small_reader& file);

private:
    using Values = Small_reader::Values;
    // A part of a card number, by the characters of the loosened text.
    struct Item {
        Span span;
        std::vector<std::uint64_t> values;
        bool is_word;
    };
    struct Best {
        Span place;
        std::size_t order;
        std::vector<std::size_t> fields;
    };

    void decode(std::string_view text);
    void find_items();
    void add_stretches(const std::vector<Span>& words);
    [[nodiscard]] bool is_gap(std::size_t from, std::size_t to) const;

    [[nodiscard]] std::vector<Span> occurrences(const Values& values,
                                                const std::string& type) const;
    [[nodiscard]] std::vector<Span> number_occurrences(const Values& values) const;
    void follow_items(const Values& values, std::size_t at, std::size_t first, std::size_t end,
                      std::vector<Span>& found) const;
    [[nodiscard]] std::size_t word_of(std::size_t character) const;
    [[nodiscard]] bool is_within(const Span& span, const Span& key,
                                 std::optional<std::uint64_t> within) const;
    [[nodiscard]] std::optional<Best> best_of(const std::vector<std::vector<Span>>& places,
                                              std::size_t least,
                                              std::optional<std::uint64_t> within) const;

    const Small_reader& file_;
    const std::vector<std::size_t>& keys_;
    Reading text_;
    std::vector<std::size_t> bytes_; // where each character begins, and the end
    std::vector<std::uint64_t> lines_;
    std::vector<Span> words_;
    Reading loose_;
    std::map<std::string, std::vector<std::vector<Token>>> readings_; // by type
    std::vector<Item> items_;
    std::vector<Token> written_numbers_;
};

} // namespace test
