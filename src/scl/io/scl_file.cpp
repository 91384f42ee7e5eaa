#include "scl/io/scl_file.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace scl {

namespace {

constexpr int FIRST_FILE_DESCRIPTOR = 3; // those below belong to the three standard streams

// O_CLOEXEC: a program started from this one must not inherit the file.
int open_retrying(const std::string& name, int flags) {
    int descriptor = -1;
    do {
        descriptor = ::open(name.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

// If a standard stream is closed, open() returns its number, and console output would go into the
// file. Moves such a descriptor to a higher number; -1 with errno set when that fails.
int keep_off_standard_streams(int descriptor) {
    if (descriptor < 0 || descriptor >= FIRST_FILE_DESCRIPTOR) return descriptor;
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, FIRST_FILE_DESCRIPTOR);
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return moved;
}

// The system's offsets are signed; a larger one would turn negative.
bool fits_offset(std::uint64_t offset, std::size_t count) {
    constexpr auto LIMIT = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
    return offset <= LIMIT && count <= LIMIT - offset;
}

// A folder is EISDIR. For pipes and devices there is no error number of their own: EINVAL.
int refusal(const struct stat& facts) {
    if (S_ISREG(facts.st_mode)) return 0;
    return S_ISDIR(facts.st_mode) ? EISDIR : EINVAL;
}

Scl_file_identity identity_of(const struct stat& facts) {
    return {facts.st_dev, facts.st_ino};
}

} // namespace

Scl_file::~Scl_file() {
    if (is_open()) ::close(descriptor_);
}

int Scl_file::open_existing(const std::string& name) {
    // O_NONBLOCK: opening a pipe without a writer would wait for one. adopt() refuses it instead.
    return adopt(open_retrying(name, O_RDONLY | O_NONBLOCK | O_NOCTTY));
}

int Scl_file::create_new(const std::string& name) {
    // O_EXCL follows no link. Otherwise somebody who may write to the folder could put a link there
    // and make this process write to another file.
    const int descriptor = open_retrying(name, O_RDWR | O_CREAT | O_EXCL);
    if (descriptor < 0) return errno;
    const int error = adopt(descriptor);
    if (error != 0) (void)scl_remove_file(name); // created but not usable: leave nothing behind
    return error;
}

// Takes over a descriptor that was just opened, or closes it. fstat() and not stat(): by now the
// name may lead to another file.
int Scl_file::adopt(int descriptor) {
    descriptor = keep_off_standard_streams(descriptor);
    if (descriptor < 0) return errno;
    struct stat facts {};
    const int error = ::fstat(descriptor, &facts) != 0 ? errno : refusal(facts);
    if (error != 0) {
        ::close(descriptor);
        return error;
    }
    descriptor_ = descriptor;
    opened_size_ = static_cast<std::uint64_t>(facts.st_size);
    identity_ = identity_of(facts);
    return 0;
}

void Scl_file::advise(bool at_random) const {
    // Advice may be refused; nothing depends on it.
    (void)::posix_fadvise(descriptor_, 0, 0, at_random ? POSIX_FADV_RANDOM : POSIX_FADV_SEQUENTIAL);
}

int Scl_file::read_at(std::uint64_t offset, std::span<std::byte> bytes, std::size_t& done) const {
    done = 0;
    if (!fits_offset(offset, bytes.size())) return EOVERFLOW;
    while (done < bytes.size()) {
        const ssize_t count = ::pread(descriptor_, bytes.data() + done, bytes.size() - done,
                                      static_cast<off_t>(offset + done));
        if (count == 0) break; // the end: the caller knows whether it comes too early
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

int Scl_file::write_at(std::uint64_t offset, std::span<const std::byte> bytes) const {
    if (!fits_offset(offset, bytes.size())) return EFBIG;
    while (!bytes.empty()) {
        const ssize_t count =
            ::pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
            offset += static_cast<std::uint64_t>(count);
        } else if (count == 0) {
            return ENOSPC; // no progress and no error: going on could loop forever
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

int Scl_file::truncate(std::uint64_t size) const {
    int result = 0;
    do {
        result = ::ftruncate(descriptor_, static_cast<off_t>(size));
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : errno;
}

// Not posix_fallocate(): where the file system cannot reserve, it writes zeros.
bool Scl_file::reserve(std::uint64_t offset, std::uint64_t count) const {
#if defined(FALLOC_FL_KEEP_SIZE) // Linux alone has it
    if (!fits_offset(offset, count)) return false;
    return ::fallocate(descriptor_, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(offset),
                       static_cast<off_t>(count)) == 0;
#else
    (void)offset;
    (void)count;
    return false;
#endif
}

int Scl_file::close() {
    if (!is_open()) return 0;
    const int descriptor = descriptor_;
    descriptor_ = -1;
    // Linux releases the descriptor whatever close() returns, EINTR included. Calling it again
    // could close a file that was opened meanwhile.
    return ::close(descriptor) == 0 || errno == EINTR ? 0 : errno;
}

int scl_remove_file(const std::string& name) {
    return ::unlink(name.c_str()) == 0 ? 0 : errno;
}

int scl_identify_file(const std::string& name, bool follow, Scl_file_identity& identity) {
    struct stat facts {};
    const int failed = follow ? ::stat(name.c_str(), &facts) : ::lstat(name.c_str(), &facts);
    if (failed != 0) return errno;
    identity = identity_of(facts);
    return 0;
}

void scl_prefer_large_pages(std::span<std::byte> memory) {
#if defined(MADV_HUGEPAGE) // Linux alone has it
    (void)::madvise(memory.data(), memory.size(), MADV_HUGEPAGE);
#else
    (void)memory;
#endif
}

std::string scl_system_reason(int error) {
    return std::generic_category().message(error);
}

} // namespace scl
