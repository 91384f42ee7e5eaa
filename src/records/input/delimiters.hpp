#pragma once

#include "scl/text/scl_text_span.hpp"

#include <cstddef>
#include <cstdint>

namespace tla {

inline constexpr char FIELD_SEPARATOR = '\t';
inline constexpr char LINE_FEED = '\n';
inline constexpr char CARRIAGE_RETURN = '\r';

// What of 64 bytes the reader has to look at, a bit for each byte: what may end a field or a line,
// and what is not ASCII. The other bytes are passed over together.
struct Delimiters {
    static constexpr std::size_t BLOCK = 64;

    std::uint64_t ends = 0;
    std::uint64_t not_ascii = 0;
};

// Byte by byte, for any processor.
[[nodiscard]] inline Delimiters find_delimiters_singly(const char* block) {
    Delimiters found;
    for (std::size_t i = 0; i < Delimiters::BLOCK; ++i) {
        const char byte = block[i];
        const bool ends = byte == FIELD_SEPARATOR || byte == LINE_FEED || byte == CARRIAGE_RETURN;
        const bool is_ascii = static_cast<unsigned char>(byte) < 0x80;
        found.ends |= static_cast<std::uint64_t>(ends) << i;
        found.not_ascii |= static_cast<std::uint64_t>(!is_ascii) << i;
    }
    return found;
}

#if SCL_WITH_SSE2

// The same, 16 bytes at a time.
[[nodiscard]] inline Delimiters find_delimiters(const char* block) {
    constexpr std::size_t STEP = sizeof(__m128i);
    Delimiters found;
    for (std::size_t at = 0; at < Delimiters::BLOCK; at += STEP) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + at));
        const auto equal = [bytes](char byte) {
            return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte));
        };
        const auto bits = [at](__m128i lanes) {
            return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(lanes)))
                   << at;
        };
        found.ends |= bits(_mm_or_si128(_mm_or_si128(equal(FIELD_SEPARATOR), equal(LINE_FEED)),
                                        equal(CARRIAGE_RETURN)));
        found.not_ascii |= bits(bytes);
    }
    return found;
}

#else

[[nodiscard]] inline Delimiters find_delimiters(const char* block) {
    return find_delimiters_singly(block);
}

#endif

} // namespace tla
