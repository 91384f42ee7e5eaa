#pragma once

#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_buffer.hpp"

namespace scl {

// Passes writes on to another buffer and adds them to a checksum while they are in the cache;
// reading the file again would cost more than the checksum itself. For writing front to back from
// offset 0: bytes that are written twice, or behind a gap, do not count. Codes are those of the
// target.
class Scl_checksum_buffer final : public Scl_buffer {
public:
    // Bytes before `begin` are left out of the checksum. The target must outlive this buffer.
    Scl_checksum_buffer(Scl_buffer& target, std::uint64_t begin) : target_(target), next_(begin) {}

    [[nodiscard]] std::uint64_t size(bool in_units, Scl_status& status) const override {
        return target_.size(in_units, status);
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        Scl_status& status) const override {
        return target_.read_at(offset, bytes, status);
    }
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                  Scl_status& status) override {
        const std::uint64_t end = offset + bytes.size();
        // Also counts when the write fails: the file is useless then, and so is its checksum.
        if (end > next_ && offset <= next_) {
            checksum_.update(bytes.subspan(next_ - offset));
            next_ = end;
        }
        target_.write_at(offset, bytes, status);
    }

    void truncate(std::uint64_t size, Scl_status& status) override {
        target_.truncate(size, status);
    }

    // Steps over bytes that were written to the target before; `checksum` is of them alone. Those
    // in front of them are summed up.
    void append_written(std::uint64_t count, const Scl_crc64& checksum) {
        checksum_.append(checksum, count);
        next_ += count;
    }

    // Of all bytes from `begin` on that were written so far.
    [[nodiscard]] const Scl_crc64& checksum() const { return checksum_; }

private:
    Scl_buffer& target_;
    std::uint64_t next_; // offset of the first byte that is not summed up yet
    Scl_crc64 checksum_;
};

} // namespace scl
