#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace scl {

// The operating system, and nothing else of the project meets it. Results are error numbers as the
// system gives them, 0 for success; names are bytes as the system takes them.

// What makes a directory entry the same file as another: links to one file are equal.
struct Scl_file_identity {
    std::uint64_t device = 0;
    std::uint64_t node = 0;
    [[nodiscard]] bool operator==(const Scl_file_identity&) const = default;
};

// An open regular file; closed when destroyed.
class Scl_file {
public:
    Scl_file() = default;
    Scl_file(const Scl_file&) = delete;
    Scl_file& operator=(const Scl_file&) = delete;
    ~Scl_file();

    // Opens an existing file for reading; EISDIR and EINVAL stand for one that is not regular.
    [[nodiscard]] int open_existing(const std::string& name);
    // Creates a file of mode 0600 that nobody else has; EEXIST when the entry exists, also as a
    // link that leads nowhere.
    [[nodiscard]] int create_new(const std::string& name);

    // Tells the system whether reads will run front to back or at random.
    void advise(bool at_random) const;

    // Reads until `bytes` is full or the file ends; interrupted and short reads are continued.
    [[nodiscard]] int read_at(std::uint64_t offset, std::span<std::byte> bytes,
                              std::size_t& done) const;
    // Writes everything or fails.
    [[nodiscard]] int write_at(std::uint64_t offset, std::span<const std::byte> bytes) const;

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
