#pragma once

#include "tla/scan/large_array.hpp"
#include "tla/scan/wide_product.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tla {

// Which sequences are values of some field, and which ones values begin with, in a few bits each.
// No is sure; a yes is wrong for some sequences in a hundred. All bits of a hash lie in one word,
// so that a question costs one access to memory.
class Value_filter {
public:
    struct Answer {
        bool is_value;
        bool begins_one; // and goes on
        [[nodiscard]] bool any() const { return is_value || begins_one; }
    };

    // For about so many sequences; more make it less sure.
    explicit Value_filter(std::uint64_t sequences)
        : words_(static_cast<std::size_t>(words_for(sequences)), true) {}

    void add_value(std::uint64_t hash) { words_[word_of(hash)] |= value_bits(hash); }
    void add_beginning(std::uint64_t hash) { words_[word_of(hash)] |= beginning_bits(hash); }

    [[nodiscard]] Answer ask(std::uint64_t hash) const {
        const std::uint64_t word = words_[word_of(hash)];
        return {(~word & value_bits(hash)) == 0, (~word & beginning_bits(hash)) == 0};
    }
    void prefetch(std::uint64_t hash) const { __builtin_prefetch(&words_[word_of(hash)], 1); }

private:
    // A byte a sequence; where that is little, up to eight.
    [[nodiscard]] static std::uint64_t words_for(std::uint64_t sequences) {
        constexpr std::uint64_t LITTLE = std::uint64_t{1} << 17U;
        return std::max(sequences / sizeof(std::uint64_t), std::min(sequences, LITTLE)) + 1;
    }

    // By the upper bits of the hash; the bits in the word by lower ones.
    [[nodiscard]] std::size_t word_of(std::uint64_t hash) const {
        return static_cast<std::size_t>(index_of_hash(hash, words_.size()));
    }
    [[nodiscard]] static std::uint64_t three_bits(std::uint64_t from) {
        return std::uint64_t{1} << (from & 63U) | std::uint64_t{1} << (from >> 6U & 63U) |
               std::uint64_t{1} << (from >> 12U & 63U);
    }
    [[nodiscard]] static std::uint64_t value_bits(std::uint64_t hash) { return three_bits(hash); }
    [[nodiscard]] static std::uint64_t beginning_bits(std::uint64_t hash) {
        return three_bits(hash >> 18U);
    }

    Large_array<std::uint64_t> words_;
};

} // namespace tla
