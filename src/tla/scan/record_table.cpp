#include "tla/scan/record_table.hpp"

#include <bit>

namespace tla {

std::size_t Record_table::width_of(std::uint64_t limit) {
    constexpr std::size_t LEAST = 4;
    const auto bits = static_cast<std::size_t>(std::bit_width(limit));
    return std::max(LEAST, (bits + 7) / 8);
}

std::uint64_t Record_table::bytes_of(std::uint64_t entries, std::uint64_t limit) {
    return entries * (1 + width_of(limit)) + entries / ENTRIES_A_BUCKET * sizeof(std::uint64_t);
}

Record_table::Record_table(std::uint64_t entries, std::uint64_t limit)
    : ends_(static_cast<std::size_t>(entries / ENTRIES_A_BUCKET + 1), true),
      width_(width_of(limit)) {}

} // namespace tla
