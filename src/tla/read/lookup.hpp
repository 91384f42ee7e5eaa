#pragma once

#include "scl/io/scl_buffered_istream.hpp"
#include "tla/read/entry_reader.hpp"
#include "tla/read/key_index.hpp"
#include "tla/read/tla_record_allowance.hpp"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace tla {

// What a lookup looks for.
struct Wanted_key {
    std::u16string_view field_name;
    std::uint64_t hash = 0;
    std::vector<std::uint64_t> values; // token values
};

// One lookup in one key table.
class Entry_finder {
public:
    using Entries = std::vector<std::unique_ptr<Tla_data_set_entry_file>>;

    // Reads pairs and entries, the latter as far as the allowance goes, through `entries`. All must
    // outlive the finder.
    Entry_finder(Entry_reader& entries, Tla_record_allowance allowance, const Wanted_key& wanted,
                 std::uint32_t block_size);

    // Adds the entries found to the results. The table counts as one of `record_count` pairs; an
    // end of the data before that is no failure. An entry that cannot be read ends the lookup.
    void find(Key_index& index, std::uint32_t record_count, Entries& results,
              scl::Scl_status& status);

private:
    void scan_block(std::uint64_t offset, std::uint32_t first, std::uint32_t pair_count,
                    bool runs_on, Entries& results, scl::Scl_status& status);
    [[nodiscard]] std::uint32_t skip_other_hashes(std::uint32_t most, scl::Scl_status& status);
    [[nodiscard]] bool take_entry(std::int64_t record_offset, Entries& results,
                                  scl::Scl_status& status);

    Entry_reader& entries_;
    scl::Scl_buffered_istream& pairs_;
    Tla_record_allowance allowance_;
    const Wanted_key& wanted_;
    std::uint32_t block_size_; // in pairs
    bool found_ = false;
    bool first_pair_differs_ = false; // the hash is the wanted one, the record is not
};

} // namespace tla
