#pragma once

#include "scl/text/scl_text_span.hpp"
#include "tla/scan/chunk_words.hpp"
#include "txt/txt_token_walk.hpp"

#include <cstddef>
#include <cstdint>
#include <type_traits>

// What the two ways through a chunk, of bytes and of units, share.
namespace tla {

// The most letters that a group without digits has.
inline constexpr std::uint32_t MOST_GROUP_LETTERS = 4;

// Shows the tokens of a text to `take(begin, end)`, as offsets; but for the empty one that stands
// for the white space which a text begins with.
template <typename Unit, typename Take>
void each_token(scl::Scl_text_span<Unit> text, Take take) {
    txt::txt_walk_tokens(text, [&](const Unit* begin, const Unit* end) {
        if (begin == end) return;
        take(static_cast<std::size_t>(begin - text.begin),
             static_cast<std::size_t>(end - text.begin));
    });
}

// Readings that come to the same are gone through once: those that the text as written stands for.
[[nodiscard]] constexpr std::uint8_t readings_as_written(bool is_loosened, bool is_parted) {
    if (is_loosened) return READING_AS_WRITTEN;
    return READING_AS_WRITTEN | READING_LOOSENED | (is_parted ? 0 : READING_PARTED);
}
[[nodiscard]] constexpr std::uint8_t readings_as_loosened(bool is_parted) {
    return READING_LOOSENED | (is_parted ? 0 : READING_PARTED);
}

inline void add_value(Number_word& word, std::uint64_t value) {
    for (std::size_t i = 0; i < word.value_count; ++i) {
        if (word.values[i] == value) return;
    }
    word.values[word.value_count++] = value;
}

// Adds the words of a loosened text to those of a chunk, each completed by `complete(word, begin,
// end)`. A hyphen alone is no word: it and white space are what stands between them.
template <typename Unit, typename Complete>
void each_number_word(Chunk_words& to, scl::Scl_text_span<Unit> text, Complete complete) {
    std::size_t gap_begin = 0;
    const auto measure_gap = [&](std::size_t end, std::uint32_t& characters,
                                 std::uint32_t& line_ends, bool& is_clean) {
        characters = static_cast<std::uint32_t>(end - gap_begin); // clean ones are single units
        line_ends = 0;
        is_clean = true;
        for (std::size_t at = gap_begin; at < end; ++at) {
            const auto unit = static_cast<std::make_unsigned_t<Unit>>(text.begin[at]);
            is_clean &= unit == '-' || scl::scl_is_white_space(unit);
            line_ends += unit == '\n' ? 1 : 0;
        }
    };
    each_token(text, [&](std::size_t begin, std::size_t end) {
        if (end - begin == 1 && text.begin[begin] == Unit{'-'}) return;
        Number_word word{};
        measure_gap(begin, word.gap_characters, word.gap_line_ends, word.gap_is_clean);
        gap_begin = end;
        complete(word, begin, end);
        to.number_words.push_back(word);
    });
    measure_gap(text.size(), to.tail_characters, to.tail_line_ends, to.tail_is_clean);
}

} // namespace tla
