// A library to preload: makes the Nth file operation of a program fail, N from FAIL_AT; only that
// one, or with FAIL_ON=1 all from there on. It counts opening, examining, reading, writing,
// cutting, removing and closing files, and creates FAIL_REPORT when it has made one fail. With
// FAIL_EMPTY=1 only reads count, and the one that fails brings nothing, as at the end of a file.
// With FAIL_INTERRUPTED=1 only those count that a signal can interrupt, and the Nth is. With
// FAIL_STOP=1 none fails: the process stops (SIGSTOP) before the Nth.
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

template <typename Function>
Function* next_of(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

const bool EMPTY_READS = std::getenv("FAIL_EMPTY") != nullptr;
const bool INTERRUPTED = std::getenv("FAIL_INTERRUPTED") != nullptr;

enum class Kind { quick, slow, reading };

bool counts(Kind kind) {
    return EMPTY_READS ? kind == Kind::reading : !INTERRUPTED || kind != Kind::quick;
}

bool fails(int error, Kind kind = Kind::quick) {
    static const char* const at = std::getenv("FAIL_AT");
    static const bool on = std::getenv("FAIL_ON") != nullptr;
    static long count = 0;
    if (at == nullptr || !counts(kind)) return false;
    ++count;
    static const bool stops = std::getenv("FAIL_STOP") != nullptr;
    if (stops && count == std::atol(at)) std::raise(SIGSTOP);
    const bool failing = stops ? false : on ? count >= std::atol(at) : count == std::atol(at);
    if (failing) {
        static const char* const report = std::getenv("FAIL_REPORT");
        static const int reported = report != nullptr ? ::creat(report, 0600) : -1;
        (void)reported;
        errno = INTERRUPTED ? EINTR : error;
    }
    return failing;
}

} // namespace

extern "C" {

int open(const char* name, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return fails(EMFILE, Kind::slow)
               ? -1
               : next_of<int(const char*, int, ...)>("open")(name, flags, mode);
}

int fstat(int file, struct stat* facts) {
    return fails(EIO) ? -1 : next_of<int(int, struct stat*)>("fstat")(file, facts);
}

int lstat(const char* name, struct stat* facts) {
    return fails(EIO) ? -1 : next_of<int(const char*, struct stat*)>("lstat")(name, facts);
}

ssize_t pread(int file, void* bytes, size_t count, off_t offset) {
    if (fails(EIO, Kind::reading)) return EMPTY_READS ? 0 : -1;
    return next_of<ssize_t(int, void*, size_t, off_t)>("pread")(file, bytes, count, offset);
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
    if (fails(ENOSPC, Kind::slow)) return -1;
    // A short write first, as disks that fill up give them.
    return next_of<ssize_t(int, const void*, size_t, off_t)>("pwrite")(
        file, bytes, count > 1 ? count / 2 : count, offset);
}

int ftruncate(int file, off_t size) {
    return fails(EIO) ? -1 : next_of<int(int, off_t)>("ftruncate")(file, size);
}

int unlink(const char* name) {
    // Alone: where nothing can be removed from then on, no program can clean up.
    static const bool alone = std::getenv("FAIL_ON") == nullptr;
    return alone && fails(EACCES) ? -1 : next_of<int(const char*)>("unlink")(name);
}

int close(int file) {
    const int result = next_of<int(int)>("close")(file);
    return fails(EIO, Kind::slow) ? -1 : result;
}

} // extern "C"
