#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tla {

// Makes UTF-8 of a text that comes in pieces. UTF-8 passes as it is, stray bytes and all; behind a
// mark of UTF-16 everything is that. The mark in front is dropped.
class Text_decoder {
public:
    // Converted text is UTF-8, whatever it begins with.
    void start(bool is_converted);
    // Appends what the bytes come to; a few may be kept for the next call.
    void decode(std::span<const std::byte> bytes, std::string& to);
    // The text is whole.
    void finish(std::string& to);

    // How many bytes in front of what is decoded count for its places. Known when some of it is.
    [[nodiscard]] std::uint64_t bytes_in_front() const { return bytes_in_front_; }

private:
    enum class Encoding : std::uint8_t { unknown, utf8, utf16_le, utf16_be };

    void settle(std::span<const std::byte> front, std::string& to);
    void pass(std::span<const std::byte> bytes, std::string& to);
    void decode_units(std::span<const std::byte> bytes, std::string& to);

    Encoding encoding_ = Encoding::unknown;
    bool is_converted_ = false;
    std::uint64_t bytes_in_front_ = 0;
    std::array<std::byte, 3> front_{}; // of the text, until its encoding is known
    std::size_t front_size_ = 0;
    std::u16string units_;  // the last of them may wait for its second half
    bool has_half_ = false; // of a unit
    std::byte half_{};
};

} // namespace tla
