#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace scl::impl {

// Twins: each function by table has one by multiplication that gives the same value. Tested by
// tests/crc64_test.cpp.

// Step the CRC-64/XZ register over bytes.
[[nodiscard]] std::uint64_t crc64_by_table(std::uint64_t reg, std::span<const std::byte> bytes);

// Only where has_carryless_multiply() is true.
[[nodiscard]] std::uint64_t crc64_by_multiply(std::uint64_t reg, std::span<const std::byte> bytes);

// The CRC-64/XZ of 8 bytes, given as a little-endian number. Likewise.
[[nodiscard]] std::uint64_t crc64_of_8(std::uint64_t bytes);

// The CRC-64/XZ of the UTF-16 form of an ASCII text, without making that form.
[[nodiscard]] std::uint64_t crc64_widened_by_table(std::string_view text);

// The same, only where has_carryless_multiply() is true. The first is for texts of up to 16
// characters, and always reads 16; the second for 16-bit units that stand before `end`, with zeros
// before them to make 16; the third for longer texts.
[[nodiscard]] std::uint64_t crc64_widened_16(const char* text, std::size_t size);
[[nodiscard]] std::uint64_t crc64_behind_zeros_16(const std::byte* end, std::size_t size);
[[nodiscard]] std::uint64_t crc64_widened_long(const char* text, std::size_t size);

// Whether the processor has the instructions. Each call reads one word of memory. A global set at
// start-up would be too late for code that runs before main().
[[nodiscard]] inline bool has_carryless_multiply() {
#if defined(__x86_64__) && !defined(DSMAKE_PORTABLE)
    return __builtin_cpu_supports("pclmul") != 0 && __builtin_cpu_supports("ssse3") != 0 &&
           __builtin_cpu_supports("sse4.1") != 0;
#else
    return false;
#endif
}

// The polynomial without its x^64 term, bit 63 - i holding the coefficient of x^i.
inline constexpr std::uint64_t CRC64_POLYNOMIAL = 0xC96C5795D7870F42;

} // namespace scl::impl
