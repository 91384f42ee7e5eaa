#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace scl::impl {

// The primary composite of two characters, or 0.
[[nodiscard]] char32_t compose_pair(char32_t first, char32_t second);

// Brings segments of text to Normalization Form C: decomposes them, orders their combining marks,
// composes them again (Unicode Standard, section 3.11; Hangul by section 3.12). Takes no memory but
// the string's.
class Composer {
public:
    // Appends to `out`, which must outlive the composer.
    explicit Composer(std::u16string& out) : out_(out) {}

    // Appends the segment, which must not interact with what is before and after it, and not be
    // the string's own.
    void compose(std::u16string_view segment);

    // The units of the decomposed text, which the composed one does not exceed.
    [[nodiscard]] static std::size_t most_units(std::u16string_view text);

private:
    [[nodiscard]] bool compose_two(std::u16string_view segment);
    void compose_group(std::u16string_view group);
    [[nodiscard]] std::uint8_t put_class(std::u16string_view group, std::uint8_t wanted);
    void put(char32_t code_point, std::uint8_t combining_class);
    void replace_starter(char32_t composed);
    void append(char32_t code_point);

    std::u16string& out_;
    bool has_starter_ = false;    // in this segment
    char32_t starter_ = 0;        // the last one
    std::size_t starter_at_ = 0;  // in the string, in units
    std::uint8_t last_class_ = 0; // of the last character put, the starter counted
};

} // namespace scl::impl
