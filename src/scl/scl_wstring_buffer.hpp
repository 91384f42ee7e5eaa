#pragma once

#include "scl/scl_memory_buffer.hpp"

#include <string_view>

namespace scl {

// A read-only buffer over a wide string that somebody else holds and that must outlive it. Its
// bytes are the string's 16-bit units, little-endian, without a terminator.
class Scl_wstring_buffer final : public Scl_memory_buffer {
public:
    explicit Scl_wstring_buffer(std::u16string_view text) : text_(text) {}

    [[nodiscard]] std::span<const std::byte> contents() const override {
        return std::as_bytes(std::span(text_));
    }

private:
    std::u16string_view text_;
};

} // namespace scl
