#include "tla/sort/pair_sorter.hpp"

#include "tla/sort/radix_sort.hpp"

#include <algorithm>
#include <bit>
#include <utility>

namespace tla {

namespace {

constexpr unsigned HASH_BITS = 64;

// Each bucket grows in a page of its own. Of 256 buckets, the cache lines and the pages in
// turn stay in the caches: sorting a million pairs takes less time than with 1024 buckets.
// More are used only where 256 would each grow too large to be sorted in one piece.
constexpr unsigned FEW_BUCKETS_BITS = 8;
constexpr unsigned MOST_BUCKETS_BITS = 10;

// A bucket is expected to hold at least so many pairs, about two pages. With fewer, half-filled
// pages would take more memory than the pairs.
constexpr std::uint64_t PAIRS_A_BUCKET = 512;

// Buckets of up to so many pairs are sorted in one piece. With the spare memory for the passes that
// is 1 MiB, within the second-level cache of most processors.
constexpr std::size_t SMALL_BUCKET = 32768;

unsigned bucket_bits(std::uint64_t expected_count, unsigned prefix_bits) {
    const auto bits_for = [expected_count](std::uint64_t pairs_a_bucket) {
        return static_cast<unsigned>(std::bit_width(expected_count / pairs_a_bucket));
    };
    const unsigned most =
        std::clamp(bits_for(SMALL_BUCKET / 2), FEW_BUCKETS_BITS, MOST_BUCKETS_BITS);
    return std::min({bits_for(PAIRS_A_BUCKET), most, HASH_BITS - prefix_bits});
}

} // namespace

struct Tla_pair_sorter::Workspace {
    std::vector<Index_pair> pairs;
    std::vector<Index_pair> spare;
};

Tla_pair_sorter::Tla_pair_sorter(std::uint64_t expected_count)
    : Tla_pair_sorter(expected_count, 0, std::make_shared<Pair_pages>(),
                      std::make_shared<Workspace>()) {}

Tla_pair_sorter::Tla_pair_sorter(std::uint64_t expected_count, unsigned prefix_bits,
                                 std::shared_ptr<Pair_pages> pages,
                                 std::shared_ptr<Workspace> workspace)
    : pages_(std::move(pages)),
      workspace_(std::move(workspace)),
      prefix_bits_(prefix_bits + bucket_bits(expected_count, prefix_bits)),
      shift_(std::min(HASH_BITS - prefix_bits_, HASH_BITS - 1)),
      buckets_(std::size_t{1} << (prefix_bits_ - prefix_bits)) {}

// A bucket's number is the next bits of its hashes. So the buckets' pairs, one bucket after the
// other, are in order.
void Tla_pair_sorter::drain(Tla_pair_sink& sink) {
    for (Pair_bucket& bucket : buckets_) {
        drain_bucket(bucket, sink);
        bucket = {};
    }
}

// A bucket is large when few hashes repeat often, or when there are more pairs than 1024 small
// buckets take. One hash alone is already sorted; splitting it would recurse forever.
void Tla_pair_sorter::drain_bucket(Pair_bucket& bucket, Tla_pair_sink& sink) {
    const std::size_t size = bucket.size();
    if (size <= SMALL_BUCKET) {
        drain_small(bucket, sink);
    } else if (bucket.is_uniform()) {
        for (const Pair_page* page = bucket.first_page(); page != nullptr; page = page->next) {
            sink.take(bucket.pairs_of(*page));
        }
        release(bucket);
    } else {
        split(bucket, size, sink);
    }
}

// Copies the pages into one piece of memory, which serves all buckets in turn.
void Tla_pair_sorter::drain_small(const Pair_bucket& bucket, Tla_pair_sink& sink) {
    std::vector<Index_pair>& pairs = workspace_->pairs;
    pairs.clear();
    for (const Pair_page* page = bucket.first_page(); page != nullptr; page = page->next) {
        const std::span<const Index_pair> found = bucket.pairs_of(*page);
        pairs.insert(pairs.end(), found.begin(), found.end());
    }
    release(bucket);
    workspace_->spare.resize(std::max(workspace_->spare.size(), pairs.size()));
    radix_sort(pairs, workspace_->spare, prefix_bits_);
    sink.take(pairs);
}

// Gives each page back as soon as its pairs are taken over, so that the parts take little more
// memory than the bucket had.
void Tla_pair_sorter::split(const Pair_bucket& bucket, std::size_t size, Tla_pair_sink& sink) {
    Tla_pair_sorter parts(size, prefix_bits_, pages_, workspace_);
    for (Pair_page* page = bucket.first_page(); page != nullptr;) {
        for (const Index_pair& pair : bucket.pairs_of(*page)) {
            parts.add(pair);
        }
        Pair_page* const next = page->next;
        pages_->give_back(page);
        page = next;
    }
    parts.drain(sink);
}

void Tla_pair_sorter::release(const Pair_bucket& bucket) {
    for (Pair_page* page = bucket.first_page(); page != nullptr;) {
        Pair_page* const next = page->next;
        pages_->give_back(page);
        page = next;
    }
}

} // namespace tla
