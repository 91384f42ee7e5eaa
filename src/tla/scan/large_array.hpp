#pragma once

#include "scl/io/scl_fixed_buffer.hpp"

#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>

namespace tla {

// An array that is gone about in at random: large ones lie in large pages, without which each step
// would wait for the way to its page as well. Memory exhausted is thrown (std::bad_alloc).
template <typename T>
class Large_array {
    static_assert(std::is_trivial_v<T>);

public:
    Large_array() = default;
    // All bytes are zero when asked for; else what was there.
    Large_array(std::size_t size, bool is_zeroed)
        : memory_(std::make_unique<scl::Scl_fixed_buffer>(size * sizeof(T))),
          items_(static_cast<T*>(static_cast<void*>(memory_->room().data()))),
          size_(size) {
        if (is_zeroed && size != 0) std::memset(static_cast<void*>(items_), 0, size * sizeof(T));
    }

    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] T& operator[](std::size_t at) { return items_[at]; }
    [[nodiscard]] const T& operator[](std::size_t at) const { return items_[at]; }

private:
    std::unique_ptr<scl::Scl_fixed_buffer> memory_;
    T* items_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace tla
