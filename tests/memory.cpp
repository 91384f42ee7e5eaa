#include "memory.hpp"

#include <cstdlib>
#include <malloc.h>

namespace {

using test::Memory;

bool fails() {
    if (Memory::fail_at == 0) return false;
    const bool failing = Memory::fail_at == 1;
    if (!failing) {
        --Memory::fail_at;
        return false;
    }
    Memory::has_failed = true;
    if (!Memory::stays) Memory::fail_at = 0;
    return true;
}

void* counted(void* memory) noexcept {
    if (memory == nullptr) return nullptr;
    Memory::in_use += malloc_usable_size(memory);
    if (Memory::in_use > Memory::most) Memory::most = Memory::in_use;
    return memory;
}

void* checked(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    return counted(memory);
}

void release(void* memory) noexcept {
    if (memory != nullptr) Memory::in_use -= malloc_usable_size(memory);
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size) {
    return checked(fails() ? nullptr : std::malloc(size));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto unit = static_cast<std::size_t>(alignment);
    return checked(fails() ? nullptr : std::aligned_alloc(unit, (size + unit - 1) / unit * unit));
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return fails() ? nullptr : counted(std::malloc(size));
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    release(memory);
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    release(memory);
}
