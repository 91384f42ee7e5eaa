#pragma once

#include "scl/text/scl_text_span.hpp"

#include <algorithm>
#include <cstddef>
#include <memory>

#pragma GCC visibility push(default) // installed

namespace tla {

// Memory for one text after another, kept from each to the next: a field takes no allocation once
// there was one as long.
template <typename Unit>
class Scratch_text {
public:
    // Memory for a text of `size` units and two blocks more, so that it can be written in blocks
    // and one can be read behind it. What was there is lost when it grows.
    [[nodiscard]] Unit* room(std::size_t size) {
        if (size + 2 * BLOCK > capacity_) {
            capacity_ = std::max(size + 2 * BLOCK, FIRST_UNITS);
            units_
                .reset(); // before the new memory is taken: a text may be as large as memory allows
            units_ = std::make_unique<Unit[]>(capacity_);
        }
        return units_.get();
    }

    // The text that was written to room().
    [[nodiscard]] scl::Scl_text_span<Unit> text(std::size_t size) const {
        return {units_.get(), units_.get() + size};
    }

private:
    static constexpr std::size_t BLOCK = scl::SCL_BLOCK_UNITS<Unit>;
    static constexpr std::size_t FIRST_UNITS = 1024;

    std::unique_ptr<Unit[]> units_;
    std::size_t capacity_ = 0;
};

} // namespace tla

#pragma GCC visibility pop
