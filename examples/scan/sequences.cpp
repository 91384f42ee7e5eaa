#include "sequences.hpp"

#include <algorithm>
#include <bit>

namespace scan {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t MODULUS = (std::uint64_t{1} << 61U) - 1;
constexpr std::uint64_t BASE = 0x1B873593CC9E2D51 % MODULUS;

std::uint64_t product(std::uint64_t a, std::uint64_t b) {
    const Wide whole = static_cast<Wide>(a) * b;
    const auto low = static_cast<std::uint64_t>(whole) & MODULUS;
    const std::uint64_t sum = low + static_cast<std::uint64_t>(whole >> 61U);
    return sum < MODULUS ? sum : sum - MODULUS;
}

// Spreads the bits: a filter goes by the upper ones.
std::uint64_t mixed(std::uint64_t hash) {
    hash *= 0x9E3779B97F4A7C15;
    return (hash ^ hash >> 32U) * 0xD6E8FEB86659FD93;
}

// Three bits of one word, so that a look costs one access to memory.
std::uint64_t bits_of(std::uint64_t mixed) {
    return std::uint64_t{1} << (mixed & 63U) | std::uint64_t{1} << (mixed >> 6U & 63U) |
           std::uint64_t{1} << (mixed >> 12U & 63U);
}

constexpr std::size_t BITS_A_HASH = 16;
constexpr std::size_t WORD_BITS = 64;

} // namespace

// One more, so that a value of 0 counts: sequences of different lengths differ.
std::uint64_t extended_hash(std::uint64_t hash, std::uint64_t value) {
    const std::uint64_t sum = product(hash, BASE) + value % MODULUS + 1;
    return sum % MODULUS;
}

Hash_filter::Hash_filter(std::size_t expected)
    : shift_(0), words_(std::bit_ceil(expected * BITS_A_HASH / WORD_BITS + 2)) {
    shift_ = WORD_BITS - static_cast<unsigned>(std::countr_zero(words_.size()));
}

std::size_t Hash_filter::word_of(std::uint64_t mixed) const {
    return static_cast<std::size_t>(mixed >> shift_);
}

void Hash_filter::add(std::uint64_t hash) {
    const std::uint64_t spread = mixed(hash);
    words_[word_of(spread)] |= bits_of(spread);
}

bool Hash_filter::may_hold(std::uint64_t hash) const {
    const std::uint64_t spread = mixed(hash);
    return (~words_[word_of(spread)] & bits_of(spread)) == 0;
}

void Hash_filter::prepare(std::uint64_t hash) const {
    __builtin_prefetch(&words_[word_of(mixed(hash))]);
}

void Sequence_walk::sum_up() {
    sums_.reserve(values_.size() + 1);
    sums_.push_back(HASH_OF_NOTHING);
    for (const std::uint64_t value : values_) {
        sums_.push_back(extended_hash(sums_.back(), value));
    }
    powers_.reserve(longest_ + 1);
    powers_.push_back(1);
    while (powers_.size() <= std::min(longest_, values_.size())) {
        powers_.push_back(product(powers_.back(), BASE));
    }
}

std::uint64_t Sequence_walk::hash_of(std::size_t first, std::size_t length) {
    if (sums_.empty()) sum_up();
    const std::uint64_t before = product(sums_[first], powers_[length]);
    const std::uint64_t whole = sums_[first + length];
    return whole >= before ? whole - before : whole + MODULUS - before;
}

// The longest sequence from a place, of at most `limit` values, that was seen before. When one was,
// so were all that it begins with, which allows halving.
std::size_t Sequence_walk::last_known(std::size_t first, std::size_t length, std::size_t limit) {
    std::size_t unknown = limit + 1;
    for (std::size_t step = length; unknown - length > 1;) {
        const std::size_t next =
            unknown > limit ? std::min(length + step, limit) : length + (unknown - length) / 2;
        if (known_.contains(hash_of(first, next))) {
            length = next;
            step *= 2;
        } else {
            unknown = next;
        }
    }
    return length;
}

} // namespace scan
