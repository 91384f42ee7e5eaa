#pragma once

#include "scl/text/scl_block.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tla {

inline constexpr char FIELD_SEPARATOR = '\t';
inline constexpr char LINE_FEED = '\n';
inline constexpr char CARRIAGE_RETURN = '\r';
inline constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

// The bytes that the reader has to look at, a bit for each of 64: those that may end a field or a
// line, and those that a byte order mark begins with. It steps over all others at once. Tested by
// Delimiters.AreThoseThatABytewiseSearchFinds.
struct Delimiters {
    static constexpr std::size_t BLOCK = 64;

    std::uint64_t ends = 0;
    std::uint64_t mark_leads = 0;
};

[[nodiscard]] inline Delimiters find_delimiters(const char* bytes) {
    Delimiters found;
    for (std::size_t at = 0; at < Delimiters::BLOCK; at += scl::SCL_BLOCK_BYTES) {
        const scl::Scl_block block(bytes + at);
        const auto ends =
            block.equals(FIELD_SEPARATOR) | block.equals(LINE_FEED) | block.equals(CARRIAGE_RETURN);
        found.ends |= std::uint64_t{ends.top_bits()} << at;
        found.mark_leads |= std::uint64_t{block.equals(BYTE_ORDER_MARK.front()).top_bits()} << at;
    }
    return found;
}

} // namespace tla
