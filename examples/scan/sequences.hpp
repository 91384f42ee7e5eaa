#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_set>
#include <vector>

namespace scan {

// Sequences of token values are told apart by a hash of 61 bits, a polynomial, so that a sequence's
// hash follows from that of what it begins with, and that of any stretch from those of two.
inline constexpr std::uint64_t HASH_OF_NOTHING = 0;

[[nodiscard]] std::uint64_t extended_hash(std::uint64_t hash, std::uint64_t value);

// Which hashes were added, in few bits each: false is sure, true is wrong for some in a hundred.
class Hash_filter {
public:
    // For about so many hashes; more make it less sure. Takes up to four bytes a hash.
    explicit Hash_filter(std::size_t expected);

    void add(std::uint64_t hash);
    [[nodiscard]] bool may_hold(std::uint64_t hash) const;
    // Has memory bring what may_hold() will look at.
    void prepare(std::uint64_t hash) const;

private:
    [[nodiscard]] std::size_t word_of(std::uint64_t mixed) const;

    unsigned shift_;
    std::vector<std::uint64_t> words_;
};

// Goes through the sequences of a list of token values that somebody may want, from each place the
// short ones first, and shows each different one where it comes first.
class Sequence_walk {
public:
    // The values must outlive the walk.
    Sequence_walk(std::span<const std::uint64_t> values, std::size_t longest)
        : values_(values), longest_(longest) {}

    // `wanted(hash)`: whether what is wanted begins so; when not, nothing longer is tried from the
    // same place. `take(hash, first, length)` is given the sequence.
    template <typename Wanted, typename Take>
    void run(Wanted wanted, Take take);

private:
    [[nodiscard]] std::size_t last_known(std::size_t first, std::size_t length, std::size_t limit);
    [[nodiscard]] std::uint64_t hash_of(std::size_t first, std::size_t length);
    void sum_up();

    // From this length on, sequences seen before are not gone through again one by one: a word that
    // is repeated over and over would take its square in time.
    static constexpr std::size_t LONG = 32;

    std::span<const std::uint64_t> values_;
    std::size_t longest_;
    std::unordered_set<std::uint64_t> known_;
    // For hash_of, made when first needed: the hash of all values before a place, and the factor
    // that a length takes.
    std::vector<std::uint64_t> sums_;
    std::vector<std::uint64_t> powers_;
};

template <typename Wanted, typename Take>
void Sequence_walk::run(Wanted wanted, Take take) {
    for (std::size_t first = 0; first < values_.size(); ++first) {
        const std::size_t limit =
            longest_ < values_.size() - first ? longest_ : values_.size() - first;
        std::uint64_t hash = HASH_OF_NOTHING;
        for (std::size_t length = 1; length <= limit; ++length) {
            hash = extended_hash(hash, values_[first + length - 1]);
            if (!wanted(hash)) break;
            if (known_.insert(hash).second) {
                take(hash, first, length);
            } else if (length == LONG && length < limit) {
                length = last_known(first, length, limit);
                hash = hash_of(first, length);
            }
        }
    }
}

} // namespace scan
