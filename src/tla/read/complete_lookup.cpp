#include "tla/read/complete_lookup.hpp"

#include "records/values/record_layout.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <functional>
#include <span>

namespace tla {

void Complete_lookup::find(Key_index& index, std::vector<std::int64_t>& offsets,
                           scl::Scl_status& status) {
    const std::size_t before = offsets.size();
    if (is_sorted(index, status)) {
        // Sorted means that a search and a scan give the same; see is_sorted().
        const Block_range blocks = index.blocks_with(wanted_.hash);
        for (std::size_t i = blocks.begin; i < blocks.end && !status.has_failed(); ++i) {
            scan(index, i, offsets, status);
        }
    } else if (!status.has_failed()) {
        take_unsorted(index, offsets, status);
    }
    // In a file that a build made, pairs of equal hash ascend by offset, and nothing is to be done.
    const std::span<std::int64_t> added = std::span(offsets).subspan(before);
    if (std::ranges::adjacent_find(added, std::greater_equal()) == added.end()) return;
    std::ranges::sort(added);
    const auto last = std::unique(added.begin(), added.end());
    offsets.resize(before + static_cast<std::size_t>(last - added.begin()));
}

// As far as this lookup looks: the samples, and the blocks that can have the hash.
bool Complete_lookup::is_sorted(Key_index& index, scl::Scl_status& status) {
    if (!index.samples_ascend) return false;
    const Block_range blocks = index.blocks_with(wanted_.hash);
    for (std::size_t i = blocks.begin; i < blocks.end; ++i) {
        if (!pairs_.ascends(index, i, status)) return false;
    }
    return true;
}

// The first pair behind those with the hash ends the scan.
void Complete_lookup::scan(Key_index& index, std::size_t block_index,
                           std::vector<std::int64_t>& offsets, scl::Scl_status& status) {
    const Key_block block = index.block_at(block_index);
    std::uint32_t i = pairs_.first_with(index, block_index, wanted_.hash, status);
    pairs_.go_to(block.offset + i * TLA_INDEX_PAIR_BYTES);
    for (; i < block.pair_count && !status.has_failed(); ++i) {
        std::uint64_t hash = 0;
        std::int64_t record_offset = 0;
        pairs_.read_hash(hash, status);
        pairs_.read_offset(record_offset, status);
        if (status.has_failed() || hash != wanted_.hash) break;
        if (is_wanted(record_offset, status)) offsets.push_back(record_offset);
    }
}

// Every pair of the table with the hash, from the order of all pairs that is made once.
void Complete_lookup::take_unsorted(Key_index& index, std::vector<std::int64_t>& offsets,
                                    scl::Scl_status& status) {
    for (const Hash_index& pair : pairs_.all_with(index, wanted_.hash, status)) {
        std::uint64_t hash = 0;
        std::int64_t record_offset = 0;
        pairs_.go_to(index.samples.front().offset + pair.index * TLA_INDEX_PAIR_BYTES);
        pairs_.read_hash(hash, status);
        pairs_.read_offset(record_offset, status);
        if (status.has_failed()) return;
        if (is_wanted(record_offset, status)) offsets.push_back(record_offset);
    }
}

// Most records are compared in the buffer, without making an entry.
bool Complete_lookup::is_wanted(std::int64_t record_offset, scl::Scl_status& status) {
    const auto record = entries_.buffered_record(record_offset, status);
    if (!record.empty()) {
        budget_.take(record.size(), status);
        return !status.has_failed() && tla_field_holds(record, wanted_.field, wanted_.values);
    }
    const auto entry = entries_.read(record_offset, status);
    if (entry == nullptr) return false;
    // Before the values are compared: a crafted file may lead every pair to one long record.
    budget_.take(entry->record_size(), status);
    return !status.has_failed() && entry->holds(wanted_.field, wanted_.values);
}

} // namespace tla
