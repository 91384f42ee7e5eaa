#include "scl/scl_crc64_kernels.hpp"
#include "scl/scl_endian.hpp"

#include <array>

namespace scl::impl {

namespace {

constexpr std::size_t STRIDE = 8; // bytes taken at once

// tables[k][b] is the register after byte b and k zero bytes, from zero.
using Tables = std::array<std::array<std::uint64_t, 256>, STRIDE>;

constexpr std::uint64_t after_byte(std::uint64_t reg) {
    for (int bit = 0; bit < 8; ++bit) {
        reg = (reg >> 1) ^ ((reg & 1) != 0 ? SCL_CRC64_POLYNOMIAL : 0);
    }
    return reg;
}

constexpr Tables make_tables() {
    Tables tables{};
    for (std::size_t byte = 0; byte < 256; ++byte) {
        tables[0][byte] = after_byte(byte);
    }
    for (std::size_t zeros = 1; zeros < STRIDE; ++zeros) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint64_t before = tables[zeros - 1][byte];
            tables[zeros][byte] = (before >> 8) ^ tables[0][before & 0xFF];
        }
    }
    return tables;
}

constexpr Tables TABLES = make_tables();

} // namespace

std::uint64_t scl_crc64_by_table(std::uint64_t reg, std::span<const std::byte> bytes) {
    for (; bytes.size() >= STRIDE; bytes = bytes.subspan(STRIDE)) {
        const std::uint64_t mixed = reg ^ scl_load_le<std::uint64_t>(bytes.data());
        reg = 0;
        for (std::size_t k = 0; k < STRIDE; ++k) {
            reg ^= TABLES[STRIDE - 1 - k][(mixed >> (8 * k)) & 0xFF];
        }
    }
    for (const std::byte byte : bytes) {
        reg = (reg >> 8) ^ TABLES[0][(reg ^ std::to_integer<std::uint64_t>(byte)) & 0xFF];
    }
    return reg;
}

} // namespace scl::impl
