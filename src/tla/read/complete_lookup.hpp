#pragma once

#include "tla/read/entries/entry_reader.hpp"
#include "tla/read/entries/read_budget.hpp"
#include "tla/read/keys/key_index.hpp"
#include "tla/read/keys/pair_reader.hpp"
#include "tla/read/wanted_key.hpp"

#include <cstdint>
#include <vector>

namespace tla {

// Finds every record that a key table leads to and that has the wanted values, over the borders of
// blocks and among other values of the same hash, where Rule_lookup keeps to the steps of
// docs/reading.md and may miss some.
class Complete_lookup {
public:
    // For a file of version 2 that has the wanted field. Reads records as far as the budget
    // goes. All must outlive the finder.
    Complete_lookup(const Wanted_key& wanted, Pair_reader& pairs, Entry_reader& entries,
                    Tla_read_budget budget)
        : wanted_(wanted), pairs_(pairs), entries_(entries), budget_(budget) {}

    // Adds the records' offsets, ascending and each once. Codes are those of Rule_lookup::find. In
    // a table that does not ascend, as it should, the blocks that may have the hash by their first
    // pairs are gone through pair by pair.
    void find(Key_index& index, std::vector<std::int64_t>& offsets, scl::Scl_status& status);

private:
    void scan(const Key_block& block, Block_order& order, std::vector<std::int64_t>& offsets,
              scl::Scl_status& status);
    [[nodiscard]] bool is_wanted(std::int64_t record_offset, scl::Scl_status& status);

    const Wanted_key& wanted_;
    Pair_reader& pairs_;
    Entry_reader& entries_;
    Tla_read_budget budget_;
};

} // namespace tla
