#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>

#pragma GCC visibility push(default) // installed

namespace scl {

// Integers in files, in one of the two byte orders. Through arrays of bytes, as what lies in a file
// or a window need not be aligned; compilers make one instruction of each of these.

template <std::integral T>
using Scl_raw = std::array<std::byte, sizeof(T)>;

template <std::integral T>
[[nodiscard]] constexpr T scl_byte_swapped(T value) {
    auto raw = std::bit_cast<Scl_raw<T>>(value);
    std::reverse(raw.begin(), raw.end());
    return std::bit_cast<T>(raw);
}

// A number whose bytes in memory are the value's, little-endian; and the other way round.
template <std::integral T>
[[nodiscard]] constexpr T scl_little_endian(T value) {
    return std::endian::native == std::endian::big ? scl_byte_swapped(value) : value;
}

template <std::integral T>
[[nodiscard]] inline T scl_load_le(const std::byte* from) {
    Scl_raw<T> raw;
    std::copy_n(from, raw.size(), raw.begin());
    return scl_little_endian(std::bit_cast<T>(raw));
}

template <std::integral T>
[[nodiscard]] inline T scl_load_be(const std::byte* from) {
    return scl_byte_swapped(scl_load_le<T>(from));
}

template <std::integral T>
inline void scl_store_le(std::byte* to, T value) {
    const auto raw = std::bit_cast<Scl_raw<T>>(scl_little_endian(value));
    std::copy_n(raw.begin(), raw.size(), to);
}

template <std::integral T>
inline void scl_store_be(std::byte* to, T value) {
    scl_store_le(to, scl_byte_swapped(value));
}

} // namespace scl

#pragma GCC visibility pop
