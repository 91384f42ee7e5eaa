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

// A lookup by the rule of docs/reading.md, step by step: the index leads to a block, the block to
// the pairs of the hash, each pair to a record, and a record that has the values is an entry. The
// rule misses records in rare cases, which docs/reading.md lists; other readers of the format find
// the same. Complete_lookup misses none.
class Rule_lookup {
public:
    using Entries = std::vector<std::unique_ptr<Tla_data_set_entry_file>>;

    // Reads entries as far as the budget goes. All must outlive the lookup.
    Rule_lookup(const Wanted_key& wanted, Pair_reader& pairs, Entry_reader& entries,
                Tla_read_budget budget)
        : wanted_(wanted), pairs_(pairs), entries_(entries), budget_(budget) {}

    // Adds the entries found to `results`; `record_count` is the file's. Notes in the index which
    // blocks ascend. An entry that cannot be read ends the lookup with the entry's code, a budget
    // that is used up with TLA_STATUS_NO_DATA_SET, a file that cannot be read with
    // SCL_STATUS_READ_FAILED. The end of the data among the pairs is no failure.
    void find(Key_index& index, std::uint32_t record_count, Entries& results,
              scl::Scl_status& status);

private:
    // The pairs to scan, by their index in a block; those before `first` are known to have other
    // hashes. When the pair at `runs_on_at` leads to another value, the scan takes one pair more.
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
    bool first_pair_differs_ =
        false; // the block's first pair has the hash, its record another value
};

} // namespace tla
