#pragma once

#include "tla/scan/chunk_words.hpp"
#include "tla/scan/line_counter.hpp"
#include "tla/scan/occurrence.hpp"

#include <algorithm>
#include <cstdint>

namespace tla {

// Where a chunk stands in its text, and with it each of its tokens.
class Chunk_place {
public:
    Chunk_place(Text_place front, const Chunk_words& words, Line_counter& lines)
        : front_(front), words_(words.words), lines_(lines) {}

    [[nodiscard]] Text_place front() const { return front_; }
    [[nodiscard]] Text_place first_of(Chunk_span span) const {
        return {front_.byte + span.begin, word_at(span.begin)};
    }
    [[nodiscard]] std::uint64_t last_word_of(Chunk_span span) const {
        return word_at(span.end - 1);
    }
    [[nodiscard]] std::uint64_t end_of(Chunk_span span) const { return front_.byte + span.end; }
    [[nodiscard]] std::uint64_t line_at(std::uint64_t byte) const { return lines_.line_at(byte); }

private:
    // The last word that begins at the offset or before.
    [[nodiscard]] std::uint64_t word_at(std::uint32_t offset) const {
        const auto behind = std::ranges::upper_bound(words_, offset, {}, &Chunk_span::begin);
        const auto before = static_cast<std::uint64_t>(behind - words_.begin());
        return front_.word + (before == 0 ? 0 : before - 1);
    }

    Text_place front_;
    const std::vector<Chunk_span>& words_;
    Line_counter& lines_;
};

} // namespace tla
