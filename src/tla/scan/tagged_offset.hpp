#pragma once

#include "scl/io/scl_endian.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace tla {

// An entry of a table from hashes to records: eight bits of the hash, then the record's offset,
// little-endian. One in 256 entries of other hashes looks like one of the hash: what is found is
// compared with the record itself.
class Tagged_offset {
public:
    // Offsets take as many bytes as the largest one needs: five for files of up to a terabyte.
    explicit Tagged_offset(std::uint64_t limit)
        : width_(std::max(LEAST, (static_cast<std::size_t>(std::bit_width(limit)) + 7) / 8)) {}

    [[nodiscard]] std::size_t size() const { return 1 + width_; } // bytes of an entry

    void put(std::byte* entry, std::uint64_t hash, std::uint64_t offset) const {
        entry[0] = tag_of(hash);
        scl::scl_store_le(entry + 1, static_cast<std::uint32_t>(offset));
        for (std::size_t i = LEAST; i < width_; ++i) {
            entry[1 + i] = static_cast<std::byte>(offset >> (8 * i));
        }
    }
    [[nodiscard]] static bool may_be(const std::byte* entry, std::uint64_t hash) {
        return *entry == tag_of(hash);
    }
    [[nodiscard]] std::uint64_t offset(const std::byte* entry) const {
        std::uint64_t offset = scl::scl_load_le<std::uint32_t>(entry + 1);
        for (std::size_t i = LEAST; i < width_; ++i) {
            offset |= std::to_integer<std::uint64_t>(entry[1 + i]) << (8 * i);
        }
        return offset;
    }

private:
    // So many bytes are moved at once, and the rest, one for most files, one by one: a move of a
    // length that is known only at run time would be a call.
    static constexpr std::size_t LEAST = sizeof(std::uint32_t);

    // Buckets go by the upper bits.
    [[nodiscard]] static std::byte tag_of(std::uint64_t hash) {
        return static_cast<std::byte>(hash);
    }

    std::size_t width_;
};

} // namespace tla
