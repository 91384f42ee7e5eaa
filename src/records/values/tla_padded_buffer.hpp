#pragma once

#include "scl/text/scl_text_span.hpp"

#include <algorithm>
#include <cstddef>
#include <memory>

#pragma GCC visibility push(default) // installed

namespace tla {

// Memory for one text at a time, reused by the next: a field allocates only when it is longer than
// all before it. Padded, so that a text can be written in whole blocks and a block can be read
// behind it (scl::Scl_text_span).
template <typename Unit>
class Tla_padded_buffer {
public:
    // Room for `size` units and two blocks. Growing loses what was there.
    [[nodiscard]] Unit* room(std::size_t size) {
        if (size + 2 * BLOCK > capacity_) grow(size + 2 * BLOCK);
        return units_.get();
    }

    // The first `size` units that were written to room().
    [[nodiscard]] scl::Scl_text_span<Unit> text(std::size_t size) const {
        return {units_.get(), units_.get() + size};
    }

private:
    static constexpr std::size_t BLOCK = scl::SCL_BLOCK_UNITS<Unit>;
    // Longer than nearly every field, so that one allocation serves a whole file.
    static constexpr std::size_t FIRST_UNITS = 1024;

    // Frees the old memory first: one text may take nearly all that there is. Not inlined: it runs
    // a few times a file, room() once a field.
    [[gnu::noinline]] void grow(std::size_t needed) {
        capacity_ = 0;
        units_.reset();
        units_ = std::make_unique<Unit[]>(std::max(needed, FIRST_UNITS));
        capacity_ = std::max(needed, FIRST_UNITS);
    }

    std::unique_ptr<Unit[]> units_;
    std::size_t capacity_ = 0;
};

} // namespace tla

#pragma GCC visibility pop
