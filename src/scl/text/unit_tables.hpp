#pragma once

#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"
#include "scl/text/unicode_tables.hpp"

// Makes the tables by 16-bit unit from the generated ones, at compile time. Generated as well, they
// would add 65,536 numbers to that file that say nothing new.
namespace scl::impl {

// A character with combining class 0 and NFC_Quick_Check Yes never changes, whatever is before it.
[[nodiscard]] constexpr std::uint8_t traits_of(const Properties& properties) {
    const bool is_inert = properties.nfc_yes && properties.combining_class == 0;
    return static_cast<std::uint8_t>((is_inert ? 0 : UNIT_TOUCHED) |
                                     (properties.to_lower != 0 ? UNIT_LOWERS : 0));
}

// Plain pointers and one statement a unit: compilers limit the steps of a constant expression.
[[nodiscard]] constexpr Unit_traits make_unit_traits(std::span<const Properties> properties,
                                                     const std::uint8_t* indexes,
                                                     const std::uint16_t* blocks) {
    std::uint8_t by_index[256] = {};
    for (std::size_t index = 0; index < properties.size(); ++index) {
        by_index[index] = traits_of(properties[index]);
    }
    Unit_traits traits{};
    std::uint8_t* const to = traits.data();
    for (std::size_t unit = 0; unit < traits.size(); ++unit) {
        to[unit] = by_index[indexes[blocks[unit / PROPERTY_BLOCK] * PROPERTY_BLOCK +
                                    unit % PROPERTY_BLOCK]];
    }
    for (char32_t unit = SCL_FIRST_SURROGATE; scl_is_surrogate(unit); ++unit) {
        to[unit] = static_cast<std::uint8_t>(UNIT_TOUCHED | (scl_is_lead(unit) ? UNIT_LOWERS : 0));
    }
    return traits;
}

// U+0130 is left as it is: its small form has two units, so scl_lower() replaces it by itself.
[[nodiscard]] constexpr Small_letters make_small_letters(std::span<const Properties> properties,
                                                         const std::uint8_t* indexes,
                                                         const std::uint16_t* blocks) {
    Small_letters small{};
    for (std::size_t unit = 0; unit < small.size(); ++unit) {
        const std::size_t block = blocks[unit / PROPERTY_BLOCK];
        const Properties& found =
            properties[indexes[block * PROPERTY_BLOCK + unit % PROPERTY_BLOCK]];
        small[unit] = static_cast<char16_t>(static_cast<std::int32_t>(unit) + found.to_lower);
    }
    small[CAPITAL_I_WITH_DOT] = CAPITAL_I_WITH_DOT;
    return small;
}

[[nodiscard]] constexpr Plain_units make_plain_units(std::span<const Properties> properties,
                                                     const std::uint8_t* indexes,
                                                     const std::uint16_t* blocks) {
    Plain_units plain{};
    for (std::size_t unit = 0; unit < plain.size(); ++unit) {
        const std::size_t block = blocks[unit / PROPERTY_BLOCK];
        const Properties& found =
            properties[indexes[block * PROPERTY_BLOCK + unit % PROPERTY_BLOCK]];
        const bool is_touched = (traits_of(found) & UNIT_TOUCHED) != 0;
        if (scl_joins_runs(found.bits) && !is_touched) plain[unit] = static_cast<char16_t>(unit);
    }
    return plain;
}

[[nodiscard]] constexpr Plain_units make_plain_small_units(std::span<const Properties> properties,
                                                           const std::uint8_t* indexes,
                                                           const std::uint16_t* blocks) {
    const Small_letters small = make_small_letters(properties, indexes, blocks);
    Plain_units plain = make_plain_units(properties, indexes, blocks);
    for (char16_t& unit : plain) {
        unit = small[unit]; // of U+0000, which is not plain, itself
    }
    plain[CAPITAL_I_WITH_DOT] = 0;
    plain[CAPITAL_SIGMA] = 0;
    return plain;
}

} // namespace scl::impl
