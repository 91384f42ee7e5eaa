#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tla {

// The three readings of a text, as bits of a set.
inline constexpr std::uint8_t READING_AS_WRITTEN = 1;
inline constexpr std::uint8_t READING_LOOSENED = 2;
inline constexpr std::uint8_t READING_PARTED = 4;

// Offsets in this file are in bytes from the chunk's front, and count what stands in the text as
// written, whatever the reading.
struct Chunk_span {
    std::uint32_t begin;
    std::uint32_t end;
};

// A word or mark of a reading, in the form of a type.
struct Chunk_token {
    std::uint64_t value;
    Chunk_span span;
};

struct Reading_tokens {
    std::uint8_t readings; // those that have these tokens
    std::vector<Chunk_token> tokens;
};

// A word of the loosened text as numbers see it.
struct Number_word {
    Chunk_span span;
    std::array<std::uint64_t, 3> values; // as it is, with capitals, with small letters
    std::uint8_t value_count;            // different ones
    bool is_group;                       // may be a part of a number in groups
    bool has_digit;
    std::uint32_t characters; // of a group, in code points
    Chunk_span text;          // of a group, in Chunk_words::number_text
    // What stands between it and the word before, or the chunk's front.
    std::uint32_t gap_characters;
    std::uint32_t gap_line_ends;
    bool gap_is_clean; // white space and hyphens alone
};

// All that is to be known of a chunk: a piece of text that neither words, normal forms, letter case
// nor readings reach into or out of.
struct Chunk_words {
    // The words as written, by which distance is measured.
    std::vector<Chunk_span> words;
    // Of Simple, then of SimpleNC: the readings, each set of equal ones once.
    std::array<std::array<Reading_tokens, 3>, 2> forms;
    std::size_t reading_count;
    // For CCNUMBER: the words of the loosened text; and where it differs, the values of the words
    // as written.
    std::vector<Number_word> number_words;
    std::u16string number_text;
    std::vector<Chunk_token> written_numbers;
    // What stands behind the last word of number_words.
    std::uint32_t tail_characters;
    std::uint32_t tail_line_ends;
    bool tail_is_clean;
};

} // namespace tla
