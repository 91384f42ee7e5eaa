#include "tla/read/rule_lookup.hpp"

#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <utility>

namespace tla {

namespace {

constexpr std::uint32_t NOWHERE = ~std::uint32_t{0}; // no block has so many pairs

} // namespace

// A record that a pair in another block leads to is not looked for but in the one case below, as it
// is told to callers; other programs that read the file find the same.
void Rule_lookup::find(Key_index& index, std::uint32_t record_count, Entries& results,
                       scl::Scl_status& status) {
    const std::size_t place = index.place_of(wanted_.hash);
    if (place == index.samples.size()) return;
    const Key_block block = index.block_at(place);
    scan({.offset = block.offset,
          .first = pairs_.first_candidate(block, wanted_.hash, index.orders[place], status),
          .end = std::min(index.block_size, record_count),
          .runs_on_at = index.block_size - 1},
         results, status);
    if (!first_pair_differs_ || found_ || place == 0 || status.has_failed()) return;
    scan({.offset = index.samples[place - 1].offset,
          .first = 0,
          .end = index.block_size,
          .runs_on_at = NOWHERE},
         results, status);
}

// Once an entry is found, the first other hash ends the scan. The range may reach over the table's
// last pair: what follows there is read as pairs, too, and ends with the file at the latest.
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
        // Part of the lookup rule, for the same reason: from here on hashes are taken from where
        // offsets are.
        if (!found_) pairs_.skip_word();
    }
    if (status == scl::SCL_STATUS_END_OF_DATA) status.clear();
}

// True when the record has the wanted values and went to the results. Another value with the same
// hash is possible, so that the hash alone decides nothing.
bool Rule_lookup::take_entry(std::int64_t record_offset, Entries& results,
                             scl::Scl_status& status) {
    auto entry = entries_.read(record_offset, status);
    if (entry == nullptr) return false;
    // Before the record is looked at: a crafted file may lead here for each of its pairs.
    budget_.take(entry->record_size(), status);
    if (status.has_failed() || !entry->holds(wanted_.field, wanted_.values)) return false;
    results.push_back(std::move(entry));
    found_ = true;
    return true;
}

} // namespace tla
