#pragma once

#include "scl/io/scl_buffer.hpp"
#include "scl/io/scl_file.hpp"

#include <string>
#include <string_view>

namespace scl {

enum class Scl_file_open : unsigned { existing = 0, create = 1 };
enum class Scl_file_access : unsigned { read = 0, read_write = 2 };

// Flags of an opening.
inline constexpr unsigned SCL_FILE_PLAIN = 0;
// A scratch file: replaces any entry of that name but a directory, and is removed when the buffer
// is closed or destroyed.
inline constexpr unsigned SCL_FILE_SCRATCH = 16;

// How an opened file will be read; a hint to the system.
inline constexpr unsigned SCL_FILE_FRONT_TO_BACK = 0;
inline constexpr unsigned SCL_FILE_AT_RANDOM = 1;

// A regular file on disk. Its size is taken when it is opened; after that only this buffer's own
// writes change it. Failures carry the file's name and the system's reason ("out: No space left on
// device"). Reading and writing leave the codes that Scl_buffer names; SCL_STATUS_READ_FAILED also
// when the file turns out shorter than it was when opened, and SCL_STATUS_OUT_OF_BOUNDS when it is
// not open.
class Scl_file_buffer final : public Scl_buffer {
public:
    Scl_file_buffer() = default;
    Scl_file_buffer(std::u16string_view path, Scl_file_open mode, Scl_file_access access,
                    unsigned flags, unsigned pattern, Scl_status& status);
    ~Scl_file_buffer() override;

    // An existing file is opened for reading, whatever `access` says. Creating without
    // SCL_FILE_SCRATCH is exclusive and follows no link. Created files have mode 0600. Pushes
    // SCL_STATUS_OPEN_FAILED, _CREATE_FAILED, _EXISTS or _NOT_REGULAR; SCL_STATUS_CLOSE_FAILED when
    // another file was open before and closing that fails, and then opens none.
    void open(std::u16string_view path, Scl_file_open mode, Scl_file_access access, unsigned flags,
              unsigned pattern, Scl_status& status);

    // Pushes SCL_STATUS_CLOSE_FAILED when the system reports a late write error here. Without
    // effect on a buffer that is not open.
    void close(Scl_status& status);
    // Closes without reporting a failure: for files that are thrown away. Allocates nothing.
    void discard() noexcept;

    [[nodiscard]] bool is_open() const { return file_.is_open(); }

    [[nodiscard]] std::uint64_t size(bool in_units, Scl_status& status) const override;
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        Scl_status& status) const override;
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                  Scl_status& status) override;
    // Also releases the disk space that was reserved behind the file's end.
    void truncate(std::uint64_t size, Scl_status& status) override;

private:
    // Disk space is reserved in steps of this size, ahead of the writes: the system then looks for
    // free space once a step and not once a page, which saves a fifth of the time of writing. Steps
    // of 16 MiB are no faster. A smaller file reserves nothing.
    static constexpr std::uint64_t RESERVE_STEP = std::uint64_t{4} << 20;

    void reserve_up_to(std::uint64_t end);
    [[nodiscard]] bool release_reserve();
    [[nodiscard]] int create_scratch();
    [[nodiscard]] int end() noexcept;
    void remove_scratch() const;
    void report(Scl_status_code code, const std::string& reason, Scl_status& status) const;

    Scl_file file_;
    std::string name_;
    std::uint64_t size_ = 0;
    std::uint64_t reserved_end_ = 0; // 0 when no room is reserved
    bool can_reserve_ = true;
    bool writable_ = false;
    bool scratch_ = false;
};

} // namespace scl
