#pragma once

#include "scl/io/scl_endian.hpp"
#include "tla/scan/scan_hashes.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tla {

// What a chunk comes to by itself, beside that its words are counted.
enum class Chunk_interest : std::uint8_t {
    unknown, // not worked out yet
    none,    // nothing of it begins a value or may be a part of a number in groups
    group,   // the same, but that it is one group of letters
    some,    // it has to be read
};

// Remembers of short chunks what they came to, so that of each different one, words, values and
// what values they begin are worked out once. Most of any text is chunks of no interest that were
// seen before. A chunk that meets another in its slot takes it, and is compared in full: so no text
// can make this slow, or hide a chunk behind another.
class Chunk_cache {
public:
    static constexpr std::size_t MOST_BYTES = 31;
    static constexpr std::size_t MOST_WORDS = 63;

    struct Entry {
        std::array<std::uint64_t, 4>
            bytes; // in the last of them its size, so that all are told apart
        Chunk_interest interest;
        std::uint8_t words;
    };

    explicit Chunk_cache(const Scan_hashes& hashes) : hashes_(hashes), entries_(ENTRIES) {}

    void clear() { entries_.assign(ENTRIES, Entry{}); }

    // The chunk's entry, of no interest known when it is new. It has at most MOST_BYTES, with as
    // many readable behind it.
    [[nodiscard]] Entry& find(std::string_view chunk) {
        const auto bytes = bytes_of(chunk);
        const std::uint64_t hash = hashes_.mixed(bytes[0] ^ hashes_.mixed(bytes[1])) ^
                                   (chunk.size() > 16 ? hashes_.mixed(bytes[2]) : 0) ^
                                   hashes_.mixed(bytes[3]);
        Entry& entry = entries_[static_cast<std::size_t>(hash >> (64 - ENTRY_BITS))];
        const std::uint64_t differ = (entry.bytes[0] ^ bytes[0]) | (entry.bytes[1] ^ bytes[1]) |
                                     (entry.bytes[2] ^ bytes[2]) | (entry.bytes[3] ^ bytes[3]);
        if (differ != 0) entry = {bytes, Chunk_interest::unknown, 0};
        return entry;
    }

private:
    static constexpr unsigned ENTRY_BITS = 15;
    static constexpr std::size_t ENTRIES = std::size_t{1} << ENTRY_BITS;

    [[nodiscard]] static std::array<std::uint64_t, 4> bytes_of(std::string_view chunk) {
        std::array<std::uint64_t, 4> bytes{};
        const auto load = [&](std::size_t word) {
            constexpr std::size_t WORD = sizeof(std::uint64_t);
            const std::size_t at = word * WORD;
            if (chunk.size() <= at) return std::uint64_t{0};
            const auto* from = reinterpret_cast<const std::byte*>(chunk.data() + at);
            const auto all = scl::scl_load_le<std::uint64_t>(from);
            const std::size_t size = chunk.size() - at;
            return size >= WORD ? all : all & ((std::uint64_t{1} << (8 * size)) - 1);
        };
        for (std::size_t word = 0; word < bytes.size(); ++word) {
            bytes[word] = load(word);
        }
        bytes[3] |= std::uint64_t{chunk.size()} << 56U;
        return bytes;
    }

    const Scan_hashes& hashes_;
    std::vector<Entry> entries_;
};

} // namespace tla
