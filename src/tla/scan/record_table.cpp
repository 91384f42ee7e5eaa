#include "tla/scan/record_table.hpp"

namespace tla {

// Before any memory is taken, so that a table that is too large is not begun.
std::uint64_t Record_table::bytes_of(std::uint64_t entries, std::uint64_t limit) {
    return entries * Tagged_offset(limit).size() +
           entries / ENTRIES_A_BUCKET * sizeof(std::uint64_t);
}

Record_table::Record_table(std::uint64_t entries, std::uint64_t limit)
    : format_(limit), ends_(static_cast<std::size_t>(entries / ENTRIES_A_BUCKET + 1), true) {}

} // namespace tla
