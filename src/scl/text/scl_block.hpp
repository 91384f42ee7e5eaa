#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

// Twins: Scl_block::top_bits() with and without SSE2. Tested by Block.* (tests/string_test.cpp) in
// both presets, release and portable.
#if defined(__SSE2__) && !defined(DSMAKE_PORTABLE)
#define SCL_WITH_SSE2 1
#include <emmintrin.h>
#else
#define SCL_WITH_SSE2 0
#endif

#pragma GCC visibility push(default) // installed

namespace scl {

// The bytes of a block: the widest register that every x86-64 and every 64-bit ARM processor has.
inline constexpr std::size_t SCL_BLOCK_BYTES = 16;
template <typename Unit>
inline constexpr std::size_t SCL_BLOCK_UNITS = SCL_BLOCK_BYTES / sizeof(Unit);

// 16 bytes of text that are looked at in one step: 16 lanes of char, or 8 of char16_t.
//
// A comparison gives a block too, whose lanes are all ones where it holds and zero elsewhere;
// top_bits() makes a bit mask of it. The compiler turns lane arithmetic into vector instructions by
// itself, on any processor that has them; only for top_bits() does it need to be told.
template <typename Unit>
class Scl_block {
    using Lane = std::conditional_t<sizeof(Unit) == 1, std::uint8_t, std::uint16_t>;
    using Signed_lane = std::make_signed_t<Lane>;
    using Lanes [[gnu::vector_size(SCL_BLOCK_BYTES)]] = Lane;
    using Signed_lanes [[gnu::vector_size(SCL_BLOCK_BYTES)]] = Signed_lane;

public:
    // Reads a whole block; `from` need not be aligned. Of an empty text, which may be null, no
    // block is read. NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker)
    explicit Scl_block(const Unit* from) { std::memcpy(&lanes_, from, sizeof lanes_); }

    void store(Unit* to) const { std::memcpy(to, &lanes_, sizeof lanes_); }

    [[nodiscard]] Scl_block equals(char ascii) const {
        return Scl_block(std::bit_cast<Lanes>(lanes_ == static_cast<Lane>(ascii)));
    }

    // Which lanes are from `first` to `last`, both of ASCII. SSE2 compares signed lanes only, so
    // the range is moved down to the least signed number: it then takes one comparison.
    [[nodiscard]] Scl_block is_between(char first, char last) const {
        constexpr Signed_lane LEAST = std::numeric_limits<Signed_lane>::min();
        const Lanes moved = lanes_ + static_cast<Lane>(LEAST - first);
        return Scl_block(std::bit_cast<Lanes>(std::bit_cast<Signed_lanes>(moved) <
                                              static_cast<Signed_lane>(LEAST + last - first + 1)));
    }

    // Lane by lane.
    [[nodiscard]] Scl_block operator|(char ascii) const {
        return Scl_block(lanes_ | static_cast<Lane>(ascii));
    }
    [[nodiscard]] Scl_block operator&(char ascii) const {
        return Scl_block(lanes_ & static_cast<Lane>(ascii));
    }
    [[nodiscard]] Scl_block operator|(Scl_block other) const {
        return Scl_block(lanes_ | other.lanes_);
    }
    [[nodiscard]] Scl_block operator+(Scl_block other) const {
        return Scl_block(lanes_ + other.lanes_);
    }

    // The top bit of each byte, that of the first byte lowest: of a comparison on char, a bit for
    // each lane; of text in char, the bytes that are not ASCII.
    [[nodiscard]] std::uint32_t top_bits() const {
#if SCL_WITH_SSE2
        return static_cast<std::uint32_t>(_mm_movemask_epi8(std::bit_cast<__m128i>(lanes_)));
#else
        const auto words = std::bit_cast<Words>(lanes_);
        return top_bits(words[0]) | top_bits(words[1]) << 8U;
#endif
    }

    // In how many lanes, counted from the first, the comparison holds without a gap.
    [[nodiscard]] std::size_t leading_lanes() const {
        return static_cast<std::size_t>(std::countr_one(top_bits())) / sizeof(Unit);
    }

private:
    using Words [[gnu::vector_size(SCL_BLOCK_BYTES)]] = std::uint64_t;

    explicit Scl_block(Lanes lanes) : lanes_(lanes) {}

    // The product brings the top bit of byte i, which is bit 8i + 7, to bit 56 + i: that takes a
    // shift by 49 - 7i, and each of the factor's bits is one of these shifts. No two of the 64
    // partial products fall on the same bit, so none carries into another.
    [[nodiscard]] static std::uint32_t top_bits(std::uint64_t word) {
        if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
        return static_cast<std::uint32_t>(((word & 0x8080808080808080U) * 0x0002040810204081U) >>
                                          56U);
    }

    Lanes lanes_;
};

} // namespace scl

#pragma GCC visibility pop
