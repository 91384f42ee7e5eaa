#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace scl::impl {

// Two ways to step the CRC-64/XZ register over bytes; they give the same value.
[[nodiscard]] std::uint64_t scl_crc64_by_table(std::uint64_t reg, std::span<const std::byte> bytes);

// Only where scl_has_carryless_multiply() is true.
[[nodiscard]] std::uint64_t scl_crc64_by_multiply(std::uint64_t reg,
                                                  std::span<const std::byte> bytes);
[[nodiscard]] bool scl_has_carryless_multiply();

// The polynomial without its x^64 term, bit 63 - i holding the coefficient of x^i.
inline constexpr std::uint64_t SCL_CRC64_POLYNOMIAL = 0xC96C5795D7870F42;

} // namespace scl::impl
