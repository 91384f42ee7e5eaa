#include "scl/scl_crc64.hpp"
#include "scl/scl_crc64_kernels.hpp"
#include "scl/scl_heap_buffer.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string_view>

namespace {

// Bit by bit, from the polynomial as the catalogue prints it.
std::uint64_t slow_register(std::uint64_t reg, std::span<const std::byte> bytes) {
    constexpr std::uint64_t POLYNOMIAL = 0x42F0E1EBA9EA3693;
    const auto reflected = [](std::uint64_t value, int bits) {
        std::uint64_t result = 0;
        for (int i = 0; i < bits; ++i) {
            result |= ((value >> i) & 1) << (bits - 1 - i);
        }
        return result;
    };
    reg = reflected(reg, 64);
    for (const std::byte byte : bytes) {
        reg ^= reflected(std::to_integer<std::uint64_t>(byte), 8) << 56;
        for (int bit = 0; bit < 8; ++bit) {
            reg = (reg << 1) ^ (reg >> 63 != 0 ? POLYNOMIAL : 0);
        }
    }
    return reflected(reg, 64);
}

TEST(Crc64, GivesTheCataloguesCheckValue) {
    constexpr std::string_view CHECK = "123456789";
    EXPECT_EQ(scl::Scl_crc64::calculate(CHECK.data(), CHECK.size(), scl::Scl_crc64::INITIAL),
              0x995DC9BBDF1939FAU);
    EXPECT_EQ(scl::Scl_crc64::calculate(nullptr, 0, scl::Scl_crc64::INITIAL), 0U);
}

// All lengths around the block sizes, at every alignment, from any register.
TEST(Crc64, BothKernelsAgreeWithTheSlowOne) {
    std::mt19937_64 random(3);
    std::vector<std::byte> bytes(1100);
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(random());
    }
    for (std::size_t size = 0; size < 1080; ++size) {
        const std::span<const std::byte> part(bytes.data() + size % 17, size);
        const std::uint64_t start = size % 3 == 0 ? scl::Scl_crc64::INITIAL : random();
        const std::uint64_t expected = slow_register(start, part);
        ASSERT_EQ(scl::impl::scl_crc64_by_table(start, part), expected) << size;
        if (!scl::impl::scl_has_carryless_multiply()) continue;
        ASSERT_EQ(scl::impl::scl_crc64_by_multiply(start, part), expected) << size;
    }
}

TEST(Crc64, PiecesAddUp) {
    std::vector<std::byte> bytes(200000, std::byte{0x5A});
    scl::Scl_status status;
    scl::Scl_heap_buffer buffer;
    buffer.write_at(0, bytes, status);
    scl::Scl_crc64 whole;
    whole.update(buffer, status);
    scl::Scl_crc64 pieces;
    pieces.update(std::span(bytes).first(3));
    pieces.update(std::span(bytes).subspan(3));
    EXPECT_EQ(whole.result(true), pieces.result(true));
    EXPECT_EQ(whole.result(true), ~whole.result(false));
    EXPECT_EQ(whole.result(true),
              scl::Scl_crc64::calculate(bytes.data(), bytes.size(), scl::Scl_crc64::INITIAL));
}

} // namespace
