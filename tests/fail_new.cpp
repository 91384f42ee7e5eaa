// A library to preload: makes the Nth taking of memory of a C++ program fail, N from FAIL_AT; only
// that one, or with FAIL_ON=1 all from there on. Creates FAIL_REPORT when it has made one fail.
#include <cstdlib>
#include <fcntl.h>
#include <new>

namespace {

bool fails() {
    static const char* const at = std::getenv("FAIL_AT");
    static const bool on = std::getenv("FAIL_ON") != nullptr;
    static long count = 0;
    ++count;
    const bool failing = at != nullptr && (on ? count >= std::atol(at) : count == std::atol(at));
    if (!failing) return false;
    static const char* const report = std::getenv("FAIL_REPORT");
    static const int reported = report != nullptr ? ::creat(report, 0600) : -1;
    (void)reported;
    return true;
}

void* checked(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
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
    return fails() ? nullptr : std::malloc(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    std::free(memory);
}
