#include "tla/sort/radix_sort.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace tla {

namespace {

constexpr unsigned HASH_BITS = 64;
constexpr unsigned DIGIT_BITS = 8;
constexpr std::size_t FEW = 32; // up to so many pairs, insertion is the fastest way

using Counts = std::array<std::size_t, std::size_t{1} << DIGIT_BITS>;

std::size_t digit(const Index_pair& pair, unsigned shift) {
    return (pair.key_hash >> shift) & ((1U << DIGIT_BITS) - 1);
}

void insertion_sort(std::span<Index_pair> pairs) {
    for (std::size_t i = 1; i < pairs.size(); ++i) {
        const Index_pair pair = pairs[i];
        std::size_t j = i;
        for (; j > 0 && hash_less(pair, pairs[j - 1]); --j) {
            pairs[j] = pairs[j - 1];
        }
        pairs[j] = pair;
    }
}

// One stable pass by the digit at `shift`.
void distribute(std::span<const Index_pair> from, std::span<Index_pair> to, unsigned shift) {
    Counts starts{};
    for (const Index_pair& pair : from) {
        ++starts[digit(pair, shift)];
    }
    std::size_t start = 0;
    for (std::size_t& count : starts) {
        start += std::exchange(count, start);
    }
    for (const Index_pair& pair : from) {
        to[starts[digit(pair, shift)]++] = pair;
    }
}

void sort_run(std::span<Index_pair> run) {
    if (run.size() <= FEW) {
        insertion_sort(run);
    } else if (!std::is_sorted(run.begin(), run.end(), hash_less)) {
        std::stable_sort(run.begin(), run.end(), hash_less);
    }
}

// Finishes pairs that are in order except for the bits below `shift`. Two neighbours out of order
// therefore agree in all upper bits: the run of pairs that share those bits is sorted. Such runs
// are rare and short. Different hashes seldom agree in so many bits, and equal hashes are in order.
void sort_runs(std::span<Index_pair> pairs, unsigned shift) {
    for (std::size_t i = 1; i < pairs.size(); ++i) {
        if (!hash_less(pairs[i], pairs[i - 1])) continue;
        const auto in_run = [&, bits = pairs[i].key_hash >> shift](const Index_pair& pair) {
            return pair.key_hash >> shift == bits;
        };
        const auto at = pairs.begin() + static_cast<std::ptrdiff_t>(i);
        const auto end = std::find_if_not(at, pairs.end(), in_run);
        const auto begin =
            std::find_if_not(std::make_reverse_iterator(at), pairs.rend(), in_run).base();
        sort_run({begin, end});
        i = static_cast<std::size_t>(end - pairs.begin());
    }
}

} // namespace

// Two stable passes, by the lower digit first, order the pairs by the 16 bits below the prefix. A
// bucket has at most 32,768 pairs, so those that agree in these bits too are short runs, which
// sort_runs() puts in order.
void radix_sort(std::span<Index_pair> pairs, std::span<Index_pair> spare, unsigned prefix_bits) {
    if (pairs.size() <= FEW || prefix_bits + 2 * DIGIT_BITS > HASH_BITS) {
        sort_run(pairs);
        return;
    }
    const unsigned shift = HASH_BITS - prefix_bits - 2 * DIGIT_BITS;
    const std::span<Index_pair> room = spare.first(pairs.size());
    distribute(pairs, room, shift);
    distribute(room, pairs, shift + DIGIT_BITS);
    sort_runs(pairs, shift);
}

} // namespace tla
