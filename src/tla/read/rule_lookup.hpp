#pragma once

#include "tla/read/entries/entry_reader.hpp"
#include "tla/read/entries/read_budget.hpp"
#include "tla/read/keys/key_index.hpp"
#include "tla/read/keys/pair_reader.hpp"
#include "tla/read/wanted_key.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace tla {

// One lookup in one key table, by the rule of docs/reading.md: the index leads to a block, the
// block to the pairs of the hash, each pair to a record, and a record that has the values is an
// entry.
class Rule_lookup {
public:
    using Entries = std::vector<std::unique_ptr<Tla_data_set_entry_file>>;

    // Reads entries as far as the budget goes. All must outlive the lookup.
    Rule_lookup(const Wanted_key& wanted, Pair_reader& pairs, Entry_reader& entries,
                Tla_read_budget budget)
        : wanted_(wanted), pairs_(pairs), entries_(entries), budget_(budget) {}

    // Adds the entries found to the results; `record_count` is the file's. An entry that cannot be
    // read ends the lookup with its code, an budget that is used up with TLA_STATUS_NO_DATA_SET,
    // a file that cannot be read with SCL_STATUS_READ_FAILED; the end of the data among the pairs
    // is no failure. What the lookup sees of the order of a block is noted in the index.
    void find(Key_index& index, std::uint32_t record_count, Entries& results,
              scl::Scl_status& status);

private:
    // The pairs that are looked at, as places in a block: those before `first` are known to have
    // other hashes. A pair with another value at `runs_on_at` makes the scan go on for a pair more.
    struct Range {
        std::uint64_t offset; // of the block's first pair, in bytes from the start of the file
        std::uint32_t first;
        std::uint32_t end;
        std::uint32_t runs_on_at;
    };

    void scan(const Range& range, Entries& results, scl::Scl_status& status);
    [[nodiscard]] bool take_entry(std::int64_t record_offset, Entries& results,
                                  scl::Scl_status& status);

    const Wanted_key& wanted_;
    Pair_reader& pairs_;
    Entry_reader& entries_;
    Tla_read_budget budget_;
    bool found_ = false;
    bool first_pair_differs_ = false; // it has the wanted hash, but its record another value
};

} // namespace tla
