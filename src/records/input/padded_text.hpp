#pragma once

#include "scl/text/scl_text_span.hpp"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace tla {

// A text that is put together from pieces. SCL_BLOCK_BYTES are readable behind it, as
// scl::Scl_text_span wants it. clear() keeps the memory for the next text.
class Padded_text {
public:
    void append(std::string_view piece) {
        const std::size_t needed = size_ + piece.size() + scl::SCL_BLOCK_BYTES;
        // Grows by half. While it grows, old and new memory exist together: with doubling that
        // would be three times the old size.
        if (needed > capacity_) grow(std::max(needed, capacity_ + capacity_ / 2));
        std::ranges::copy(piece, bytes_.get() + size_);
        size_ += piece.size();
    }
    void clear() { size_ = 0; }

    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] std::string_view view() const { return {bytes_.get(), size_}; }
    [[nodiscard]] char* data() { return bytes_.get(); }

private:
    // Not filled with zeros: the system takes no memory for pages before they are written.
    void grow(std::size_t capacity) {
        auto bytes = std::make_unique_for_overwrite<char[]>(capacity);
        std::ranges::copy(view(), bytes.get());
        bytes_ = std::move(bytes);
        capacity_ = capacity;
    }

    std::unique_ptr<char[]> bytes_;
    std::size_t capacity_ = 0;
    std::size_t size_ = 0;
};

} // namespace tla
