#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace test {

// The readings of a text as the scanner's model sees them: whole texts, character by character.

// Characters of a text, the last one counted.
struct Span {
    std::size_t first;
    std::size_t last;
    auto operator<=>(const Span&) const = default;
};

// A character of a reading, and which one of the text it stands for.
struct Read_char {
    char32_t code;
    std::size_t origin;
};
using Reading = std::vector<Read_char>;

struct Token {
    std::uint64_t value;
    Span span; // in the text as written
};

[[nodiscard]] bool is_nd(char32_t code);
[[nodiscard]] bool is_plain_letter(char32_t c);

// A text in the form of a type.
[[nodiscard]] std::u16string form_of(std::u16string_view text, const std::string& type);

[[nodiscard]] Reading loosened(Reading reading);
[[nodiscard]] Reading parted(Reading reading); // of a loosened one
[[nodiscard]] std::u16string text_of(const Reading& reading);

// The words and marks of a reading, by its own characters.
[[nodiscard]] std::vector<Span> tokens_of(const Reading& reading);
[[nodiscard]] std::vector<Token> tokens_in_form(const Reading& reading, const std::string& type);

} // namespace test
