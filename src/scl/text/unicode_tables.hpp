#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// The data behind normalisation and case mapping. The definitions are generated, but for the
// tables by unit, which unit_tables.hpp derives from the others.
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

// A two-stage table: PROPERTY_BLOCKS gives the block of a run of 128 code points, PROPERTY_PLACES
// the index in PROPERTIES of each code point of a block. Equal blocks are stored once, so that all
// of Unicode takes 55 KB.
inline constexpr std::size_t PROPERTY_BLOCK = 128;
inline constexpr std::size_t CODE_POINT_LIMIT = 0x110000;

extern const std::span<const std::uint8_t> PROPERTY_PLACES;
extern const std::array<std::uint16_t, CODE_POINT_LIMIT / PROPERTY_BLOCK> PROPERTY_BLOCKS;
extern const std::span<const Properties> PROPERTIES;

// Sorted by `composed`, for a binary search: few texts ever need one.
extern const std::span<const Decomposition> DECOMPOSITIONS;
// The primary composites, sorted by `first`, then `second`.
extern const std::span<const Decomposition> COMPOSITIONS;

// What normalisation (NFC) and lower-casing do with a 16-bit unit. Most units have neither trait
// and need no decoding. Lead surrogates have both, since only the whole pair can tell; trail
// surrogates only the first.
inline constexpr std::uint8_t UNIT_TOUCHED = 1; // may change, or change with what is before it
inline constexpr std::uint8_t UNIT_LOWERS = 2;  // has another small form

using Unit_traits = std::array<std::uint8_t, 0x10000>;
extern const Unit_traits UNIT_TRAITS;

// U+0300, the first combining mark. Below it nothing changes in NFC.
inline constexpr char16_t FIRST_MARK = 0x300;
// The one character that grows when it is lower-cased (SpecialCasing.txt). The table of small
// letters has it unchanged.
inline constexpr char16_t CAPITAL_I_WITH_DOT = 0x130;
// The one whose small form depends on what is around it.
inline constexpr char16_t CAPITAL_SIGMA = 0x3A3;

// The small form of each character that UTF-8 writes in one byte or two: Latin, Greek, Cyrillic.
using Small_letters = std::array<char16_t, 0x800>;
extern const Small_letters SMALL_LETTERS;

// By a character that UTF-8 writes in one byte or two, what it becomes as a part of a plain run:
// itself or its small form. 0 for what is no letter, digit or connector, and for what normalisation
// or small letters take more than a look at it.
using Plain_units = std::array<char16_t, 0x800>;
extern const Plain_units PLAIN_UNITS;
extern const Plain_units PLAIN_SMALL_UNITS;

// The properties of a code point; values above U+10FFFF have those of an unassigned one.
[[nodiscard]] inline const Properties& properties_of(char32_t code_point) {
    const std::size_t at = code_point < CODE_POINT_LIMIT ? code_point : 0x10FFFF;
    const std::size_t block = PROPERTY_BLOCKS[at / PROPERTY_BLOCK];
    return PROPERTIES[PROPERTY_PLACES[block * PROPERTY_BLOCK + at % PROPERTY_BLOCK]];
}

} // namespace scl::impl
