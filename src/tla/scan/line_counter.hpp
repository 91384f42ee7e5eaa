#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tla {

// Tells the lines of places that mostly ascend, by the line ends between each and the one before.
class Line_counter {
public:
    void start(std::uint64_t byte) {
        byte_ = byte;
        line_ = 1;
    }
    // What of the text is in memory, and where it begins in the text. Places and the one asked for
    // last must lie in it.
    void look_at(std::string_view text, std::uint64_t begin) {
        text_ = text;
        begin_ = begin;
    }

    [[nodiscard]] std::uint64_t line_at(std::uint64_t byte) {
        if (byte < byte_) return line_ - line_ends(byte, byte_);
        line_ += line_ends(byte_, byte);
        byte_ = byte;
        return line_;
    }

private:
    [[nodiscard]] std::uint64_t line_ends(std::uint64_t from, std::uint64_t to) const {
        const std::string_view between = text_.substr(static_cast<std::size_t>(from - begin_),
                                                      static_cast<std::size_t>(to - from));
        return static_cast<std::uint64_t>(std::ranges::count(between, '\n'));
    }

    std::string_view text_;
    std::uint64_t begin_ = 0;
    std::uint64_t byte_ = 0;
    std::uint64_t line_ = 1;
};

} // namespace tla
