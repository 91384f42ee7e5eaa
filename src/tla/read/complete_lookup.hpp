#pragma once

#include "tla/read/entries/entry_reader.hpp"
#include "tla/read/entries/read_budget.hpp"
#include "tla/read/keys/key_index.hpp"
#include "tla/read/keys/pair_reader.hpp"
#include "tla/read/wanted_key.hpp"

#include <cstdint>
#include <vector>

namespace tla {

// A lookup that finds every record that has the wanted values and a pair in the key table: across
// the borders of blocks, and among other values of the same hash. Rule_lookup may miss some.
class Complete_lookup {
public:
    // For a file of version 2 that has the wanted field. Reads records as far as the budget goes.
    // All must outlive the lookup.
    Complete_lookup(const Wanted_key& wanted, Pair_reader& pairs, Entry_reader& entries,
                    Tla_read_budget budget)
        : wanted_(wanted), pairs_(pairs), entries_(entries), budget_(budget) {}

    // Adds the records' offsets, ascending and each once. Codes are those of Rule_lookup::find.
    // Reads a table that is not sorted once, and keeps its pairs in order in the index.
    void find(Key_index& index, std::vector<std::int64_t>& offsets, scl::Scl_status& status);

private:
    [[nodiscard]] bool is_sorted(Key_index& index, scl::Scl_status& status);
    void scan(Key_index& index, std::size_t block_index, std::vector<std::int64_t>& offsets,
              scl::Scl_status& status);
    void take_unsorted(Key_index& index, std::vector<std::int64_t>& offsets,
                       scl::Scl_status& status);
    [[nodiscard]] bool is_wanted(std::int64_t record_offset, scl::Scl_status& status);

    const Wanted_key& wanted_;
    Pair_reader& pairs_;
    Entry_reader& entries_;
    Tla_read_budget budget_;
};

} // namespace tla
