#include "scl/io/scl_fixed_buffer.hpp"

#include "scl/io/scl_file.hpp"

#include <new>

namespace scl {

// Aligned to large pages, which take fewer entries of the processor's page cache (TLB): lookups
// read from all over the buffer. Small buffers have the same alignment, so that Free frees all
// alike; it costs them addresses, not memory.
Scl_fixed_buffer::Scl_fixed_buffer(std::size_t size)
    : bytes_(static_cast<std::byte*>(::operator new (size, std::align_val_t{SCL_LARGE_PAGE}))),
      size_(size) {
    if (size >= SCL_LARGE_PAGE) scl_prefer_large_pages(room());
}

void Scl_fixed_buffer::Free::operator()(std::byte* bytes) const {
    ::operator delete (bytes, std::align_val_t{SCL_LARGE_PAGE});
}

} // namespace scl
