#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace scl {

// All calls to the operating system for files are in this one source file. Results are its error
// numbers (errno), 0 for success; callers turn them into a status with the file's name. Names are
// bytes, as the system takes them.

// Two directory entries with equal identities are the same file (hard links).
struct Scl_file_identity {
    std::uint64_t device = 0;
    std::uint64_t node = 0;
    [[nodiscard]] bool operator==(const Scl_file_identity&) const = default;
};

// An open regular file. The destructor closes it but cannot report an error: call close() after
// writing.
class Scl_file {
public:
    Scl_file() = default;
    Scl_file(const Scl_file&) = delete;
    Scl_file& operator=(const Scl_file&) = delete;
    ~Scl_file();

    // Opens an existing file for reading. EISDIR and EINVAL: it is not regular. The size of a pipe
    // or a device says nothing of its content.
    [[nodiscard]] int open_existing(const std::string& name);
    // Creates a file for reading and writing; EEXIST when the entry exists, even as a link that
    // leads nowhere. The mode is 0600: what is made of customer data is for its owner only.
    [[nodiscard]] int create_new(const std::string& name);

    // Tells the system whether reads will be sequential or random, so that it reads ahead or not.
    void advise(bool at_random) const;

    // Reads until `bytes` is full or the file ends, going on after interrupted and short reads.
    // `done` is how many bytes were read, also after an error.
    [[nodiscard]] int read_at(std::uint64_t offset, std::span<std::byte> bytes,
                              std::size_t& done) const;
    // Writes everything or fails.
    [[nodiscard]] int write_at(std::uint64_t offset, std::span<const std::byte> bytes) const;

    // Cuts the file to `size` bytes. Releases disk space that was reserved behind them.
    [[nodiscard]] int truncate(std::uint64_t size) const;
    // Reserves disk space for `count` bytes from `offset` on, without changing the file's size.
    // False when the system cannot, or has no space; only speed depends on it.
    [[nodiscard]] bool reserve(std::uint64_t offset, std::uint64_t count) const;

    // An error here means that an earlier write, reported as done, was lost. 0 when not open.
    [[nodiscard]] int close();

    [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
    // Both as of the opening.
    [[nodiscard]] std::uint64_t opened_size() const { return opened_size_; }
    [[nodiscard]] const Scl_file_identity& identity() const { return identity_; }

private:
    [[nodiscard]] int adopt(int descriptor);

    int descriptor_ = -1;
    std::uint64_t opened_size_ = 0;
    Scl_file_identity identity_;
};

// Removes a directory entry that is no directory; ENOENT when there is none.
[[nodiscard]] int scl_remove_file(const std::string& name);

// The identity of the file that the name leads to; with `follow` false, that of the entry itself,
// even if it is a symbolic link.
[[nodiscard]] int scl_identify_file(const std::string& name, bool follow,
                                    Scl_file_identity& identity);

// The system's text for an error number.
[[nodiscard]] std::string scl_system_reason(int error);

// Advises the system to back memory by pages of 2 MiB. Memory that is filled in random order then
// takes one page fault for each 2 MiB instead of each 4 KiB. Only whole large pages count, so align
// the memory to SCL_LARGE_PAGE. The system may ignore it; only time depends on it.
inline constexpr std::size_t SCL_LARGE_PAGE = std::size_t{2} << 20;
void scl_prefer_large_pages(std::span<std::byte> memory);

} // namespace scl
