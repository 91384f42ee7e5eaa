#include "scl/crc/crc64_kernels.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_buffers.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string_view>

namespace {

// Bit by bit, with the catalogue's polynomial 0x42F0E1EBA9EA3693 lowest bit first.
std::uint64_t slow_register(std::uint64_t reg, std::span<const std::byte> bytes) {
    for (const std::byte byte : bytes) {
        reg ^= std::to_integer<std::uint64_t>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            reg = (reg >> 1) ^ ((reg & 1) != 0 ? 0xC96C5795D7870F42 : 0);
        }
    }
    return reg;
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
        ASSERT_EQ(scl::impl::crc64_by_table(start, part), expected) << size;
        if (!scl::impl::has_carryless_multiply()) continue;
        ASSERT_EQ(scl::impl::crc64_by_multiply(start, part), expected) << size;
    }
}

TEST(Crc64, GoesOnWithTheChecksumOfWhatFollows) {
    std::vector<std::byte> bytes(70000);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::byte>(i * i);
    }
    for (const std::size_t front : {0U, 1U, 7U, 300U, 69999U, 70000U}) {
        scl::Scl_crc64 all;
        all.update(std::span(bytes).first(front));
        scl::Scl_crc64 next;
        next.update(std::span(bytes).subspan(front));
        all.append(next, bytes.size() - front);
        EXPECT_EQ(all.result(false), slow_register(scl::Scl_crc64::INITIAL, bytes)) << front;
    }
    scl::Scl_status status;
    scl::Scl_heap_buffer buffer;
    buffer.write_at(0, bytes, status);
    scl::Scl_crc64 of_buffer; // of more than is read at once
    of_buffer.update(scl::Scl_sub_buffer(buffer, 0, buffer.size(false, status), status), status);
    EXPECT_EQ(of_buffer.result(false), slow_register(scl::Scl_crc64::INITIAL, bytes));
}

// Texts of all lengths, at every alignment.
TEST(Crc64, WidenedTextIsThatOfItsUnits) {
    std::mt19937_64 random(4);
    const std::string text = [&random] {
        std::string letters(600, ' ');
        for (char& letter : letters) {
            letter = static_cast<char>(random() % 128);
        }
        return letters;
    }();
    const std::u16string wide(text.begin(), text.end());
    for (std::size_t size = 0; size < 550; ++size) {
        const std::size_t at = size % 31;
        const std::uint64_t expected = ~slow_register(
            scl::Scl_crc64::INITIAL, std::as_bytes(std::span(wide).subspan(at, size)));
        ASSERT_EQ(scl::Scl_crc64::calculate_widened(&text[at], size), expected) << size;
        ASSERT_EQ(scl::impl::crc64_widened_by_table({&text[at], size}), expected) << size;
    }
}

} // namespace
