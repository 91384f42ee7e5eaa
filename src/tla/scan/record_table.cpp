#include "tla/scan/record_table.hpp"

#include <bit>

namespace tla {

// Offsets take as many bytes as the largest one needs: five for files of up to a terabyte.
std::size_t Record_table::width_of(std::uint64_t limit) {
    constexpr std::size_t LEAST = 4;
    const auto bits = static_cast<std::size_t>(std::bit_width(limit));
    return std::max(LEAST, (bits + 7) / 8);
}

// Before any memory is taken, so that a table that is too large is not begun.
std::uint64_t Record_table::bytes_of(std::uint64_t entries, std::uint64_t limit) {
    return entries * (1 + width_of(limit)) + entries / ENTRIES_A_BUCKET * sizeof(std::uint64_t);
}

Record_table::Record_table(std::uint64_t entries, std::uint64_t limit)
    : ends_(static_cast<std::size_t>(entries / ENTRIES_A_BUCKET + 1), true),
      width_(width_of(limit)) {}

} // namespace tla
