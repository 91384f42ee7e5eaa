#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace scl {

// The operating system as far as files go; no other source file calls it for them. Results are
// error numbers as the system gives them (errno), 0 for success: it takes a file's name to make a
// status of one, and only a caller has that. Names are bytes as the system takes them.

// What makes a directory entry the same file as another: links to one file are equal.
struct Scl_file_identity {
    std::uint64_t device = 0;
    std::uint64_t node = 0;
    [[nodiscard]] bool operator==(const Scl_file_identity&) const = default;
};

// An open regular file; closed when destroyed, but then nobody is told of an error: who has written
// calls close().
class Scl_file {
public:
    Scl_file() = default;
    Scl_file(const Scl_file&) = delete;
    Scl_file& operator=(const Scl_file&) = delete;
    ~Scl_file();

    // Opens an existing file for reading. EISDIR and EINVAL mean one that is not regular: its size
    // would say nothing of what it holds.
    [[nodiscard]] int open_existing(const std::string& name);
    // Creates a file that nobody else has, to read and write; EEXIST when the entry exists, also as
    // a link that leads nowhere. Its mode is 0600, as what is made of sensitive data is sensitive.
    [[nodiscard]] int create_new(const std::string& name);

    // Tells the system whether reads will run front to back or at random, for it to read ahead.
    void advise(bool at_random) const;

    // Reads until `bytes` is full or the file ends; interrupted and short reads are continued. How
    // many bytes there were is in `done`, also after an error.
    [[nodiscard]] int read_at(std::uint64_t offset, std::span<std::byte> bytes,
                              std::size_t& done) const;
    // Writes everything or fails.
    [[nodiscard]] int write_at(std::uint64_t offset, std::span<const std::byte> bytes) const;

    // Cuts the file to `size` bytes. Room that was reserved behind them is given back.
    [[nodiscard]] int truncate(std::uint64_t size) const;
    // Takes disk room for `count` bytes from `offset` on; the file's size stays. Not every system
    // can, and room may be short: nothing but speed depends on it.
    [[nodiscard]] bool reserve(std::uint64_t offset, std::uint64_t count) const;

    // Tells of a write that failed only after it was reported done. 0 when not open.
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

// What the name leads to, links followed; with `follow` false what the entry itself is.
[[nodiscard]] int scl_identify_file(const std::string& name, bool follow,
                                    Scl_file_identity& identity);

// The system's text for an error number.
[[nodiscard]] std::string scl_system_reason(int error);

// Asks for large pages behind memory that is about to be filled from all sides, where the system
// would otherwise take a fault for each 4 KiB. Advice: whether it is taken makes no difference but
// in time. Whole large pages count, so the memory should be aligned to SCL_LARGE_PAGE.
inline constexpr std::size_t SCL_LARGE_PAGE = std::size_t{2} << 20;
void scl_prefer_large_pages(std::span<std::byte> memory);

} // namespace scl
