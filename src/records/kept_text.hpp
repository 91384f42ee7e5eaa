#pragma once

#include "scl/text/scl_text_span.hpp"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace tla {

// Text that is put together from pieces. Its memory is kept when it is emptied, and a block can be
// read behind the text (scl::Scl_text_span).
class Kept_text {
public:
    // Grows by half: with doubling, a text just longer than the memory would take three times its
    // size for a moment.
    void append(std::string_view piece) {
        const std::size_t needed = size_ + piece.size() + scl::SCL_BLOCK_BYTES;
        if (needed > capacity_) grow(std::max(needed, capacity_ + capacity_ / 2));
        std::ranges::copy(piece, bytes_.get() + size_);
        size_ += piece.size();
    }
    void clear() { size_ = 0; }

    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] std::string_view view() const { return {bytes_.get(), size_}; }
    [[nodiscard]] char* data() { return bytes_.get(); }

private:
    // Not filled: what is not used yet takes no memory of the machine's.
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
