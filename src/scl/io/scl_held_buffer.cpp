#include "scl/io/scl_held_buffer.hpp"

#include "scl/io/scl_file.hpp"

#include <new>

namespace scl {

// Aligned to large pages: reads from all over the bytes then seldom have to look a page up. Small
// buffers are aligned so as well, which costs them nothing but addresses.
Scl_held_buffer::Scl_held_buffer(std::size_t size)
    : bytes_(static_cast<std::byte*>(::operator new (size, std::align_val_t{SCL_LARGE_PAGE}))),
      size_(size) {
    if (size >= SCL_LARGE_PAGE) scl_prefer_large_pages(room());
}

void Scl_held_buffer::Free::operator()(std::byte* bytes) const {
    ::operator delete (bytes, std::align_val_t{SCL_LARGE_PAGE});
}

} // namespace scl
