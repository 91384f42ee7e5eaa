#include "tla/read/lookup.hpp"

#include "scl/io/scl_endian.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/read/sorted_block.hpp"

#include <algorithm>

namespace tla {

namespace {

constexpr std::size_t HASH_BYTES = 8;

} // namespace

Entry_finder::Entry_finder(Entry_reader& entries, Tla_record_allowance allowance,
                           const Wanted_key& wanted, std::uint32_t block_size)
    : entries_(entries),
      pairs_(entries.pairs()),
      allowance_(allowance),
      wanted_(wanted),
      block_size_(block_size) {}

void Entry_finder::find(Key_index& index, std::uint32_t record_count, Entries& results,
                        scl::Scl_status& status) {
    const std::span<const Index_sample> samples = index.samples;
    // The last block that begins with the hash or below it.
    const auto next =
        std::ranges::upper_bound(samples, wanted_.hash, {}, &Index_sample::first_hash);
    if (next == samples.begin()) return;
    const auto chosen = next - 1;
    const auto place = static_cast<std::size_t>(chosen - samples.begin());
    const auto before = static_cast<std::uint32_t>(place * block_size_);
    const Sorted_block block{.offset = chosen->offset,
                             .pair_count = std::min(block_size_, record_count - before),
                             .first_hash = chosen->first_hash,
                             .next_hash =
                                 next == samples.end() ? ~std::uint64_t{0} : next->first_hash};
    const std::uint32_t first =
        first_candidate(block, wanted_.hash, index.orders[place], pairs_, status);
    scan_block(block.offset, first, std::min(block_size_, record_count), true, results, status);
    const bool look_before = first_pair_differs_ && !found_ && chosen != samples.begin();
    if (look_before && block_size_ != 0 && !status.has_failed()) {
        scan_block((chosen - 1)->offset, 0, block_size_, false, results, status);
    }
}

// Pairs before `first` are known to have other hashes. Once an entry has matched, the first other
// hash ends the scan. With `runs_on`, a pair of the wanted hash whose record differs does not end
// it at the block's last place: pairs of the next block follow.
void Entry_finder::scan_block(std::uint64_t offset, std::uint32_t first, std::uint32_t pair_count,
                              bool runs_on, Entries& results, scl::Scl_status& status) {
    pairs_.set_position(offset + first * TLA_INDEX_PAIR_BYTES);
    for (std::uint32_t i = first; i < pair_count && !status.has_failed(); ++i) {
        if (!found_) i += skip_other_hashes(pair_count - i, status);
        if (i == pair_count) break;
        std::uint64_t hash = ~wanted_.hash;
        std::int64_t record_offset = 0;
        pairs_.read_le(hash, status);
        if (hash != wanted_.hash && found_) break;
        pairs_.read_le(record_offset, status);
        if (status.has_failed() || hash != wanted_.hash ||
            take_entry(record_offset, results, status))
            continue;
        first_pair_differs_ = first_pair_differs_ || i == 0;
        if (runs_on && i == block_size_ - 1) --i;
        // Part of the format's lookup rule: from here on hashes are taken from where offsets stand.
        if (!found_) pairs_.set_position(pairs_.tell() + HASH_BYTES);
    }
    if (status == scl::SCL_STATUS_END_OF_DATA) status.clear();
}

// Steps over pairs at hand that have another hash, and returns their number.
std::uint32_t Entry_finder::skip_other_hashes(std::uint32_t most, scl::Scl_status& status) {
    const std::span<const std::byte> window = pairs_.window(TLA_INDEX_PAIR_BYTES, status);
    const std::size_t count = std::min<std::size_t>(most, window.size() / TLA_INDEX_PAIR_BYTES);
    std::size_t i = 0;
    while (i < count &&
           scl::scl_load_le<std::uint64_t>(&window[i * TLA_INDEX_PAIR_BYTES]) != wanted_.hash) {
        ++i;
    }
    pairs_.skip(i * TLA_INDEX_PAIR_BYTES);
    return static_cast<std::uint32_t>(i);
}

// True when the record holds the wanted value and went to the results.
bool Entry_finder::take_entry(std::int64_t record_offset, Entries& results,
                              scl::Scl_status& status) {
    auto entry = entries_.read(record_offset, status);
    if (entry == nullptr) return false;
    allowance_.take(entry->record_size(), status);
    if (status.has_failed()) return false;
    std::vector<std::uint64_t> values;
    Formatter_type_id type;
    const bool known = entry->token_values(wanted_.field_name, values, type);
    if (!known || values != wanted_.values) return false;
    results.push_back(std::move(entry));
    found_ = true;
    return true;
}

} // namespace tla
