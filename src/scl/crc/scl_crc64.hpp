#pragma once

#include "scl/io/scl_buffer.hpp"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace scl {

// CRC-64/XZ of the CRC catalogue: polynomial 0x42F0E1EBA9EA3693, reflected in and out, register
// started at all ones, complemented at the end; 0x995DC9BBDF1939FA over "123456789". Uses
// carry-less multiplication where the processor has it.
class Scl_crc64 {
public:
    static constexpr std::uint64_t INITIAL = ~std::uint64_t{0};

    // The complemented register over `size` bytes, the register started at `initial`.
    [[nodiscard]] static std::uint64_t calculate(const void* data, std::size_t size,
                                                 std::uint64_t initial);

    // calculate() from INITIAL over 8 bytes, as most keys' values have, without a branch on the
    // size.
    [[nodiscard]] static std::uint64_t calculate_8(const std::byte* bytes);

    // calculate() over the units of a text, each little-endian.
    [[nodiscard]] static std::uint64_t calculate_units(std::u16string_view text,
                                                       std::uint64_t initial = INITIAL) {
        if constexpr (std::endian::native == std::endian::big) {
            return calculate_swapped(text, initial);
        }
        return calculate(text.data(), text.size() * sizeof(char16_t), initial);
    }

    // calculate() from INITIAL over the UTF-16 form (little-endian) of an ASCII text of `size`
    // characters, without making that form. WIDENED_BLOCK characters must be readable from `text`
    // on, so that a text of up to as many takes one step, whatever its length.
    [[nodiscard]] static std::uint64_t calculate_widened(const char* text, std::size_t size);
    static constexpr std::size_t WIDENED_BLOCK = 16;

    // calculate_units() over 1 to WIDENED_BLOCK units that stand before `end`, behind zeros:
    // WIDENED_BLOCK units before `end` are readable.
    [[nodiscard]] static std::uint64_t calculate_behind_zeros(const char16_t* end,
                                                              std::size_t size);

    void update(std::span<const std::byte> bytes);
    // Feeds all bytes of the buffer. A read error is left in the status.
    void update(const Scl_buffer& buffer, Scl_status& status);

    // Goes on as if `count` bytes had been fed here of which `next`, an object of its own, was fed
    // instead: so the checksum of a file's later part can be made before its front is known. Takes
    // some thousand steps, whatever the count.
    void append(const Scl_crc64& next, std::uint64_t count);

    // The complemented register, equal to calculate() from INITIAL over the same bytes; with
    // `complemented` false the register as it stands.
    [[nodiscard]] std::uint64_t result(bool complemented) const {
        return complemented ? ~register_ : register_;
    }

private:
    [[nodiscard]] static std::uint64_t calculate_swapped(std::u16string_view text,
                                                         std::uint64_t initial);

    std::uint64_t register_ = INITIAL;
};

} // namespace scl

#pragma GCC visibility pop
