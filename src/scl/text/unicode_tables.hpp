#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// The data behind normalisation and case mapping. The definitions are generated.
namespace scl::impl {

// What normalisation and case mapping need to know of one code point. Many code points share one.
struct Properties {
    std::int32_t to_lower;        // added to the code point: simple lower-case mapping
    std::int32_t to_fold;         // added to the code point: simple case folding (C and S)
    std::uint8_t combining_class; // Canonical_Combining_Class
    std::uint8_t bits;            // as in the bit table
    bool nfc_yes : 1;             // NFC_Quick_Check is Yes
    bool composes_back : 1;       // NFC_Quick_Check is Maybe
    bool decomposes : 1;          // has a canonical decomposition (Hangul syllables not counted)
    bool cased : 1;               // Cased
    bool case_ignorable : 1;      // Case_Ignorable
};

// Canonical decomposition of one code point, one step: `second` is 0 for a single code point, and
// never decomposes further; `first` may.
struct Decomposition {
    char32_t composed;
    char32_t first;
    char32_t second;
};

// Two stages: the block number of each run of PROPERTY_BLOCK code points, then the place of
// each code point's properties.
inline constexpr std::size_t PROPERTY_BLOCK = 128;
inline constexpr std::size_t CODE_POINT_LIMIT = 0x110000;

extern const std::span<const std::uint8_t> PROPERTY_PLACES;
extern const std::array<std::uint16_t, CODE_POINT_LIMIT / PROPERTY_BLOCK> PROPERTY_BLOCKS;
extern const std::span<const Properties> PROPERTIES;

// Sorted by `composed`.
extern const std::span<const Decomposition> DECOMPOSITIONS;
// The primary composites, sorted by `first`, then `second`.
extern const std::span<const Decomposition> COMPOSITIONS;

// The properties of a code point; values above U+10FFFF have those of an unassigned one.
[[nodiscard]] inline const Properties& properties_of(char32_t code_point) {
    const std::size_t at = code_point < CODE_POINT_LIMIT ? code_point : 0x10FFFF;
    const std::size_t block = PROPERTY_BLOCKS[at / PROPERTY_BLOCK];
    return PROPERTIES[PROPERTY_PLACES[block * PROPERTY_BLOCK + at % PROPERTY_BLOCK]];
}

} // namespace scl::impl
