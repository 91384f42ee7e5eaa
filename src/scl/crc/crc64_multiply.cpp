#include "scl/crc/crc64_kernels.hpp"
#include "scl/io/scl_endian.hpp"

#include <array>

#if defined(__x86_64__)

#include <immintrin.h>

#define SCL_WITH_MULTIPLY [[gnu::target("pclmul,ssse3,sse4.1")]]

// CRC-64 by carry-less multiplication. Tested by tests/crc64_test.cpp, which compares every
// function here with its twin by table.
//
// A message is a polynomial, bit-reflected: in a 128-bit value, bit i is the coefficient of
// x^(127-i). So the first byte of a message, in the low bits, holds the highest powers:
//
//   bit      0 1 2 ... 127
//   power  127 126 ...   0
//
// The product of two reflected 64-bit values comes out multiplied by one more x; the constants make
// up for it.
namespace scl::impl {

namespace {

// x^n mod P, reflected.
constexpr std::uint64_t power(unsigned n) {
    std::uint64_t value = std::uint64_t{1} << 63;
    for (; n != 0; --n) {
        value = (value >> 1) ^ ((value & 1) != 0 ? CRC64_POLYNOMIAL : 0);
    }
    return value;
}

// P has 65 coefficients. Here bit i is that of x^(64-i), and the one of x^0 does not fit; reduce()
// adds it as with_x_0.
constexpr std::uint64_t POLYNOMIAL_65 = (CRC64_POLYNOMIAL << 1) | 1;

// floor(x^128 / P) in the same form, by long division from the highest power down.
constexpr std::uint64_t reciprocal_65() {
    std::uint64_t quotient = 1;
    std::uint64_t rest = CRC64_POLYNOMIAL; // of x^128 - x^64 P, divided by x^64
    for (int i = 1; i < 64; ++i) {
        const std::uint64_t digit = rest & 1; // reflected: bit 0 is the coefficient of x^63
        quotient |= digit << i;
        rest = (rest >> 1) ^ (digit != 0 ? CRC64_POLYNOMIAL : 0);
    }
    return quotient;
}

constexpr std::size_t BLOCK = 16;
// A multiplication takes several cycles, but a new one can start in each: four independent sums
// keep the multiplier busy.
constexpr std::size_t LANES = 4;
// From so many bytes on (256) the lanes are used. Bringing four lanes together at the end takes
// three folds more, which fewer bytes would not win back.
constexpr std::size_t BULK = 4 * LANES * BLOCK;

SCL_WITH_MULTIPLY inline __m128i pair(std::uint64_t low, std::uint64_t high) {
    return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
}

SCL_WITH_MULTIPLY inline __m128i load(const std::byte* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

// `value`, multiplied by the power of x that `by` holds, plus `next`: what comes of `value` when
// more bytes follow it, the last 16 of which are `next`.
SCL_WITH_MULTIPLY inline __m128i fold(__m128i value, __m128i by, __m128i next) {
    const __m128i low = _mm_clmulepi64_si128(value, by, 0x00);
    const __m128i high = _mm_clmulepi64_si128(value, by, 0x11);
    return _mm_xor_si128(_mm_xor_si128(low, high), next);
}

template <std::size_t Bytes>
SCL_WITH_MULTIPLY inline __m128i fold_by(__m128i value, __m128i next) {
    constexpr std::uint64_t LOW = power(8 * Bytes + 63);
    constexpr std::uint64_t HIGH = power(8 * Bytes - 1);
    return fold(value, pair(LOW, HIGH), next);
}

// value * x^64 mod P: the register after the 16 bytes of `value`, from zero.
SCL_WITH_MULTIPLY inline std::uint64_t reduce(__m128i value) {
    constexpr std::uint64_t X_127 = power(127);
    constexpr std::uint64_t RECIPROCAL = reciprocal_65();
    const __m128i by_x_128 = _mm_clmulepi64_si128(value, pair(X_127, 0), 0x00);
    const __m128i rest = _mm_xor_si128(by_x_128, _mm_srli_si128(value, 8));
    // Barrett reduction: multiply by the reciprocal for the quotient, then subtract quotient * P.
    const __m128i divisors = pair(RECIPROCAL, POLYNOMIAL_65);
    const __m128i quotient = _mm_clmulepi64_si128(rest, divisors, 0x00);
    const __m128i multiple = _mm_clmulepi64_si128(quotient, divisors, 0x10);
    const __m128i with_x_0 = _mm_xor_si128(multiple, _mm_slli_si128(quotient, 8));
    return static_cast<std::uint64_t>(_mm_extract_epi64(_mm_xor_si128(rest, with_x_0), 1));
}

// A first block of 1 to 16 bytes, with zeros in front to make it 16. Zeros at the front of a
// message do not change its remainder.
struct Head {
    std::uint64_t low;
    std::uint64_t high;
    std::uint64_t left; // the part of the register that meets bytes behind the block
};

// 1 to 7 bytes as a little-endian number, without reading beyond them.
inline std::uint64_t load_few(const std::byte* from, std::size_t count) {
    if (count >= 4) {
        const std::uint64_t last = scl_load_le<std::uint32_t>(from + count - 4);
        return scl_load_le<std::uint32_t>(from) | last << (8 * (count - 4));
    }
    const auto byte_at = [from](std::size_t i) {
        return std::to_integer<std::uint64_t>(from[i]) << (8 * i);
    };
    return byte_at(0) | byte_at(count / 2) | byte_at(count - 1);
}

inline Head make_head(std::uint64_t reg, const std::byte* from, std::size_t count) {
    if (count < 8) {
        const std::uint64_t mixed = load_few(from, count) ^ reg;
        return {0, mixed << (8 * (8 - count)), reg >> (8 * count)};
    }
    // In two halves, since a shift by 64 is undefined.
    const std::size_t front = 4 * (16 - count);
    const std::size_t back = 4 * (count - 8);
    const std::uint64_t first = scl_load_le<std::uint64_t>(from) ^ reg;
    const std::uint64_t last = scl_load_le<std::uint64_t>(from + count - 8);
    return {(first << front) << front, last ^ ((reg >> back) >> back), 0};
}

// The bytes to go over as they lie in memory.
struct Plain_bytes {
    static constexpr std::size_t SOURCE_BLOCK = BLOCK; // bytes in memory for BLOCK bytes of message

    SCL_WITH_MULTIPLY static __m128i block(const std::byte* from) { return load(from); }
};

// ASCII text, gone over as the UTF-16 units that it stands for: each byte is followed by a zero.
struct Widened_text {
    static constexpr std::size_t SOURCE_BLOCK = BLOCK / 2;

    SCL_WITH_MULTIPLY static __m128i block(const std::byte* from) {
        return _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)));
    }
};

// For up to a few hundred bytes. `head` is the register and the first bytes of the message, so many
// that whole blocks are left, at least one: those from `at` to `end`.
template <typename Source>
SCL_WITH_MULTIPLY std::uint64_t step_blocks(const Head& head, const std::byte* at,
                                            const std::byte* end) {
    __m128i value = pair(head.low, head.high);
    value = fold_by<BLOCK>(value, _mm_xor_si128(Source::block(at), pair(head.left, 0)));
    for (at += Source::SOURCE_BLOCK; at != end; at += Source::SOURCE_BLOCK) {
        value = fold_by<BLOCK>(value, Source::block(at));
    }
    return reduce(value);
}

SCL_WITH_MULTIPLY std::uint64_t step(std::uint64_t reg, const std::byte* at, std::size_t count) {
    const std::size_t head_bytes = (count - 1) % BLOCK + 1;
    const Head head = make_head(reg, at, head_bytes);
    if (head_bytes == count) return reduce(pair(head.low, head.high)) ^ head.left;
    return step_blocks<Plain_bytes>(head, at + head_bytes, at + count);
}

// The shuffle that moves the first n bytes of 16 to their end, with zeros before them, is the 16
// bytes of this table from n on. Each says which byte comes to its place; 0x80 makes a zero. For
// n = 2 they are 80 ... 80 00 01.
constexpr std::array<std::uint8_t, 2 * BLOCK> make_moves() {
    std::array<std::uint8_t, 2 * BLOCK> moves{};
    for (std::size_t i = 0; i < BLOCK; ++i) {
        moves[i] = 0x80;
        moves[BLOCK + i] = static_cast<std::uint8_t>(i);
    }
    return moves;
}
constexpr std::array MOVES = make_moves();

// The CRC of 2n zero bytes. The register is linear in its start and in the message: the CRC of a
// text is the CRC of as many zero bytes, xor the register over the text started at 0.
constexpr std::array<std::uint64_t, BLOCK + 1> make_after_zeros() {
    std::array<std::uint64_t, BLOCK + 1> after{};
    for (std::size_t n = 1; n <= BLOCK; ++n) {
        std::uint64_t reg = ~after[n - 1];
        for (int bit = 0; bit < 16; ++bit) {
            reg = (reg >> 1) ^ ((reg & 1) != 0 ? CRC64_POLYNOMIAL : 0);
        }
        after[n] = ~reg;
    }
    return after;
}
constexpr std::array AFTER_ZEROS = make_after_zeros();

// At least BULK bytes, a multiple of LANES blocks.
SCL_WITH_MULTIPLY std::uint64_t step_bulk(std::uint64_t reg, std::span<const std::byte> bytes) {
    const std::byte* at = bytes.data();
    __m128i a = _mm_xor_si128(load(at), pair(reg, 0));
    __m128i b = load(at + BLOCK);
    __m128i c = load(at + 2 * BLOCK);
    __m128i d = load(at + 3 * BLOCK);
    const std::byte* const end = at + bytes.size();
    for (at += LANES * BLOCK; at != end; at += LANES * BLOCK) {
        a = fold_by<LANES * BLOCK>(a, load(at));
        b = fold_by<LANES * BLOCK>(b, load(at + BLOCK));
        c = fold_by<LANES * BLOCK>(c, load(at + 2 * BLOCK));
        d = fold_by<LANES * BLOCK>(d, load(at + 3 * BLOCK));
    }
    return reduce(fold_by<BLOCK>(fold_by<BLOCK>(fold_by<BLOCK>(a, b), c), d));
}

} // namespace

std::uint64_t crc64_by_multiply(std::uint64_t reg, std::span<const std::byte> bytes) {
    if (bytes.size() >= BULK) {
        const std::size_t whole = bytes.size() / (LANES * BLOCK) * (LANES * BLOCK);
        reg = step_bulk(reg, bytes.first(whole));
        bytes = bytes.subspan(whole);
    }
    return bytes.empty() ? reg : step(reg, bytes.data(), bytes.size());
}

SCL_WITH_MULTIPLY std::uint64_t crc64_of_8(std::uint64_t bytes) {
    return ~reduce(pair(0, ~bytes));
}

// Without a loop or a branch on the length, which a processor would often mispredict: the two
// halves of the widened text take one fold and one reduction.
SCL_WITH_MULTIPLY std::uint64_t crc64_widened_16(const char* text, std::size_t size) {
    const __m128i move = load(reinterpret_cast<const std::byte*>(MOVES.data() + size));
    const __m128i moved = _mm_shuffle_epi8(load(reinterpret_cast<const std::byte*>(text)), move);
    const __m128i first = _mm_cvtepu8_epi16(moved);
    const __m128i second = _mm_cvtepu8_epi16(_mm_srli_si128(moved, BLOCK / 2));
    return reduce(fold_by<BLOCK>(first, second)) ^ AFTER_ZEROS[size];
}

SCL_WITH_MULTIPLY std::uint64_t crc64_behind_zeros_16(const std::byte* end, std::size_t size) {
    return reduce(fold_by<BLOCK>(load(end - 2 * BLOCK), load(end - BLOCK))) ^ AFTER_ZEROS[size];
}

SCL_WITH_MULTIPLY std::uint64_t crc64_widened_long(const char* text, std::size_t size) {
    constexpr std::size_t SOURCE_BLOCK = Widened_text::SOURCE_BLOCK;
    const auto* const at = reinterpret_cast<const std::byte*>(text);
    const std::size_t head_size = (size - 1) % SOURCE_BLOCK + 1;
    std::array<std::byte, BLOCK> widened;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(widened.data()), Widened_text::block(at));
    const Head head = make_head(~std::uint64_t{0}, widened.data(), 2 * head_size);
    return ~step_blocks<Widened_text>(head, at + head_size, at + size);
}

} // namespace scl::impl

#else

namespace scl::impl {

// Nobody calls these: has_carryless_multiply() is false.
std::uint64_t crc64_by_multiply(std::uint64_t reg, std::span<const std::byte> bytes) {
    return crc64_by_table(reg, bytes);
}
std::uint64_t crc64_of_8(std::uint64_t bytes) {
    Scl_raw<std::uint64_t> raw;
    scl_store_le(raw.data(), bytes);
    return ~crc64_by_table(~std::uint64_t{0}, raw);
}
std::uint64_t crc64_widened_16(const char* text, std::size_t size) {
    return crc64_widened_by_table({text, size});
}
std::uint64_t crc64_behind_zeros_16(const std::byte* end, std::size_t size) {
    return ~crc64_by_table(~std::uint64_t{0}, {end - 2 * size, end});
}
std::uint64_t crc64_widened_long(const char* text, std::size_t size) {
    return crc64_widened_by_table({text, size});
}

} // namespace scl::impl

#endif
