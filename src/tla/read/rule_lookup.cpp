#include "tla/read/rule_lookup.hpp"

#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <utility>

namespace tla {

namespace {

constexpr std::uint32_t NEVER = ~std::uint32_t{0}; // no block has so many pairs

} // namespace

// Only one block is scanned, and the one before it in a single case: when the block's first pair
// has the hash but leads to another value, and nothing was found. docs/reading.md says so to
// callers, and other readers of the format do the same.
void Rule_lookup::find(Key_index& index, std::uint32_t record_count, Entries& results,
                       scl::Scl_status& status) {
    const std::size_t block_index = index.block_index_of(wanted_.hash);
    if (block_index == index.samples.size()) return;
    // `end` is the block's size and not what the table has left: the rule, see scan().
    scan({.offset = index.samples[block_index].offset,
          .first = pairs_.first_with(index, block_index, wanted_.hash, status),
          .end = std::min(index.block_size, record_count),
          .runs_on_at = index.block_size - 1},
         results, status);
    if (!first_pair_differs_ || found_ || block_index == 0 || status.has_failed()) return;
    scan({.offset = index.samples[block_index - 1].offset,
          .first = pairs_.first_with(index, block_index - 1, wanted_.hash, status),
          .end = index.block_size,
          .runs_on_at = NEVER},
         results, status);
}

// Once an entry is found, the first other hash ends the scan. The range may reach past the table's
// last pair: the bytes there are read as pairs as well, until the file ends at the latest.
void Rule_lookup::scan(const Range& range, Entries& results, scl::Scl_status& status) {
    pairs_.go_to(range.offset + range.first * TLA_INDEX_PAIR_BYTES);
    for (std::uint32_t i = range.first; i < range.end && !status.has_failed(); ++i) {
        if (!found_) i += pairs_.skip_others(wanted_.hash, range.end - i, status);
        if (i == range.end) break;
        std::uint64_t hash = 0;
        std::int64_t record_offset = 0;
        pairs_.read_hash(hash, status);
        if (status.has_failed() || hash != wanted_.hash) break;
        pairs_.read_offset(record_offset, status);
        if (status.has_failed()) break;
        if (take_entry(record_offset, results, status)) continue;
        first_pair_differs_ = first_pair_differs_ || i == 0;
        if (i == range.runs_on_at) --i;
        // The rule reads eight bytes too far here: from now on it takes offsets for hashes. Kept,
        // so that every reader of a file finds the same.
        if (!found_) pairs_.skip_word();
    }
    if (status == scl::SCL_STATUS_END_OF_DATA) status.clear();
}

// True when the record has the wanted values and was added to the results. Different values can
// share a hash, so the values are compared.
bool Rule_lookup::take_entry(std::int64_t record_offset, Entries& results,
                             scl::Scl_status& status) {
    auto entry = entries_.read(record_offset, status);
    if (entry == nullptr) return false;
    // Before the values are compared: a crafted file may lead every pair to one long record.
    budget_.take(entry->record_size(), status);
    if (status.has_failed() || !entry->holds(wanted_.field, wanted_.values)) return false;
    results.push_back(std::move(entry));
    found_ = true;
    return true;
}

} // namespace tla
