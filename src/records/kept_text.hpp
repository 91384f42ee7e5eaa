#pragma once

#include "scl/text/scl_text_span.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace tla {

// Text that is put together from pieces. Its memory is kept when it is emptied, and a block can be
// read behind the text (scl::Scl_text_span).
class Kept_text {
public:
    // Grows by half: with doubling, a text just longer than the memory would take three times its
    // size for a moment.
    void append(std::string_view piece) {
        const std::size_t needed = size_ + piece.size() + scl::SCL_BLOCK_BYTES;
        if (needed > bytes_.size()) {
            bytes_.reserve(std::max(needed, bytes_.size() + bytes_.size() / 2));
            bytes_.resize(bytes_.capacity());
        }
        std::ranges::copy(piece, bytes_.begin() + static_cast<std::ptrdiff_t>(size_));
        size_ += piece.size();
    }
    void clear() { size_ = 0; }

    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] std::string_view view() const { return {bytes_.data(), size_}; }
    [[nodiscard]] char* data() { return bytes_.data(); }

private:
    std::vector<char> bytes_;
    std::size_t size_ = 0;
};

} // namespace tla
