#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace tla {

// What differs between the versions of a data set file. docs/file-format.md describes version 2,
// docs/version-1.md the other. All code asks here; a new version is a new line, and a flag for what
// is new in it.
struct Tla_data_set_version {
    std::uint8_t number;
    bool stores_texts;   // records are scrambled texts, else token values
    bool hash_is_chosen; // by the program that made the file; else it is that of the token values
    bool is_current;     // read without asking for it; older ones are upgraded
};

inline constexpr std::array TLA_DATA_SET_VERSIONS = {
    Tla_data_set_version{
        .number = 1, .stores_texts = true, .hash_is_chosen = true, .is_current = false},
    Tla_data_set_version{
        .number = 2, .stores_texts = false, .hash_is_chosen = false, .is_current = true},
};

// The version that is written.
inline constexpr const Tla_data_set_version& TLA_LATEST_VERSION = TLA_DATA_SET_VERSIONS.back();

// What a file with that number is read as. A number that nobody knows is read like the latest, when
// a caller accepts any version, but is not current.
[[nodiscard]] constexpr Tla_data_set_version tla_data_set_version(std::uint8_t number) {
    const auto* const known =
        std::ranges::find(TLA_DATA_SET_VERSIONS, number, &Tla_data_set_version::number);
    if (known != TLA_DATA_SET_VERSIONS.end()) return *known;
    Tla_data_set_version unknown = TLA_LATEST_VERSION;
    unknown.number = number;
    unknown.is_current = false;
    return unknown;
}

} // namespace tla
