#include "scl/crc/scl_crc64.hpp"

#include "scl/crc/crc64_kernels.hpp"
#include "scl/io/scl_buffered_istream.hpp"
#include "scl/io/scl_endian.hpp"

#include <algorithm>
#include <array>

namespace scl {

namespace {

// How many bytes one step takes. Their look-ups do not depend on one another, so the processor does
// them side by side.
constexpr std::size_t STRIDE = 8;

// tables[k][b] is the register after byte b and k zero bytes, from zero.
using Tables = std::array<std::array<std::uint64_t, 256>, STRIDE>;

// Reflected: the highest power is in the lowest bit. So bits leave at the right, and the next byte
// of the message is added at the low end.
constexpr std::uint64_t after_byte(std::uint64_t reg) {
    for (int bit = 0; bit < 8; ++bit) {
        reg = (reg >> 1) ^ ((reg & 1) != 0 ? impl::CRC64_POLYNOMIAL : 0);
    }
    return reg;
}

constexpr Tables make_tables() {
    Tables tables{};
    for (std::size_t byte = 0; byte < 256; ++byte) {
        tables[0][byte] = after_byte(byte);
    }
    // The CRC is linear: the effects of single bytes add up. So eight bytes can be taken at once; a
    // byte with k more behind it is looked up in the table for k zero bytes.
    for (std::size_t zeros = 1; zeros < STRIDE; ++zeros) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint64_t before = tables[zeros - 1][byte];
            tables[zeros][byte] = (before >> 8) ^ tables[0][before & 0xFF];
        }
    }
    return tables;
}

// 16 KiB, made by the compiler. A caller's own static constructor may compute a checksum before
// main(), when a table filled at start-up could still be empty.
constexpr Tables TABLES = make_tables();

std::uint64_t step(std::uint64_t reg, std::span<const std::byte> bytes) {
    return impl::has_carryless_multiply() ? impl::crc64_by_multiply(reg, bytes)
                                          : impl::crc64_by_table(reg, bytes);
}

// Polynomials modulo the CRC's, bit 63 - i holding the coefficient of x^i.
std::uint64_t multiply(std::uint64_t a, std::uint64_t b) {
    std::uint64_t product = 0;
    for (std::uint64_t bit = std::uint64_t{1} << 63; bit != 0; bit >>= 1) {
        if ((a & bit) != 0) product ^= b;
        b = (b >> 1) ^ ((b & 1) != 0 ? impl::CRC64_POLYNOMIAL : 0); // times x
    }
    return product;
}

// The register after `count` zero bytes: times x^(8 count), by squaring x^8.
std::uint64_t after_zeros(std::uint64_t reg, std::uint64_t count) {
    std::uint64_t power = std::uint64_t{1} << (63 - 8);
    for (; count != 0; count >>= 1) {
        if ((count & 1) != 0) reg = multiply(reg, power);
        power = multiply(power, power);
    }
    return reg;
}

} // namespace

std::uint64_t impl::crc64_by_table(std::uint64_t reg, std::span<const std::byte> bytes) {
    for (; bytes.size() >= STRIDE; bytes = bytes.subspan(STRIDE)) {
        // The register meets exactly the next eight bytes, so both go through the tables as one.
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

// Four characters make one word of the message. Not inlined: its array would give
// calculate_widened() a stack protector, which the way by multiplication does not need.
[[gnu::noinline]] std::uint64_t impl::crc64_widened_by_table(std::string_view text) {
    std::uint64_t reg = Scl_crc64::INITIAL;
    while (!text.empty()) {
        std::array<std::byte, STRIDE> widened{};
        const std::size_t count = std::min(text.size(), STRIDE / 2);
        for (std::size_t i = 0; i < count; ++i) {
            widened[2 * i] = static_cast<std::byte>(text[i]);
        }
        reg = crc64_by_table(reg, std::span(widened).first(2 * count));
        text.remove_prefix(count);
    }
    return ~reg;
}

// Complements only here, at the end: update() goes on from the register itself.
std::uint64_t Scl_crc64::calculate(const void* data, std::size_t size, std::uint64_t initial) {
    return ~step(initial, {static_cast<const std::byte*>(data), size});
}

std::uint64_t Scl_crc64::calculate_8(const std::byte* bytes) {
    if (!impl::has_carryless_multiply()) return calculate(bytes, 8, INITIAL);
    return impl::crc64_of_8(scl_load_le<std::uint64_t>(bytes));
}

// For big-endian processors, unit by unit: they read files that were made elsewhere.
std::uint64_t Scl_crc64::calculate_swapped(std::u16string_view text, std::uint64_t initial) {
    std::uint64_t reg = initial;
    for (const char16_t unit : text) {
        reg = impl::crc64_by_table(reg, std::bit_cast<Scl_raw<char16_t>>(scl_little_endian(unit)));
    }
    return ~reg;
}

// Most tokens fit one block. Those take neither a loop nor a branch on the length.
std::uint64_t Scl_crc64::calculate_widened(const char* text, std::size_t size) {
    if (!impl::has_carryless_multiply()) return impl::crc64_widened_by_table({text, size});
    return size <= WIDENED_BLOCK ? impl::crc64_widened_16(text, size)
                                 : impl::crc64_widened_long(text, size);
}

std::uint64_t Scl_crc64::calculate_behind_zeros(const char16_t* end, std::size_t size) {
    if (!impl::has_carryless_multiply()) return calculate_units({end - size, size});
    return impl::crc64_behind_zeros_16(reinterpret_cast<const std::byte*>(end), size);
}

void Scl_crc64::update(std::span<const std::byte> bytes) {
    register_ = step(register_, bytes);
}

// The register is linear in its start and in the message. `next` started from INITIAL; where it
// should have started differs by this register's difference to INITIAL.
void Scl_crc64::append(const Scl_crc64& next, std::uint64_t count) {
    register_ = after_zeros(register_ ^ INITIAL, count) ^ next.register_;
}

// Window by window, as a data set file may be larger than memory. The loop compares positions; an
// empty window could also mean a failure, which the status tells.
void Scl_crc64::update(const Scl_buffer& buffer, Scl_status& status) {
    Scl_buffered_istream in(buffer, status);
    const std::uint64_t size = in.size(status);
    while (in.tell() != size && !status.has_failed()) {
        const std::span<const std::byte> bytes = in.window(status);
        update(bytes);
        in.skip(bytes.size());
    }
}

} // namespace scl
