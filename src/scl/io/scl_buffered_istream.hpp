#pragma once

#include "scl/io/scl_istream.hpp"

#include <cassert>
#include <memory>

namespace scl {

// Reads ahead in large pieces, so that there is no call to the system for each small read; over a
// buffer that lies in memory it reads in place, without a copy. The codes it leaves are those of
// Scl_istream.
class Scl_buffered_istream final : public Scl_istream {
public:
    Scl_buffered_istream() = default;
    // Attaches to the buffer, at the data's front. read_char() is not for this stream: it would
    // have nowhere to report.
    explicit Scl_buffered_istream(const Scl_buffer& buffer) { attach(buffer); }
    // `status` must outlive the attachment: read_char(), which is given none, reports there.
    Scl_buffered_istream(const Scl_buffer& buffer, Scl_status& status) {
        init(buffer, false, status, Scl_eol::none);
    }
    // The same with further arguments that change nothing: `at_end` is false, and both modes of
    // line ends pass bytes through unchanged.
    Scl_buffered_istream(const Scl_buffer& buffer, bool at_end, Scl_status& status, Scl_eol eol) {
        init(buffer, at_end, status, eol);
    }
    void init(const Scl_buffer& buffer, bool at_end, Scl_status& status, Scl_eol eol);

    // The next byte; 0 when there is none, with SCL_STATUS_END_OF_DATA or SCL_STATUS_READ_FAILED.
    [[nodiscard]] unsigned char read_char() {
        const std::byte* const next = take(1);
        return next != nullptr ? std::to_integer<unsigned char>(*next) : read_char_beyond_window();
    }

    // The buffered bytes from the position on; reads more first when there are none. Empty only at
    // the end, which is no error here, and after a failure (SCL_STATUS_READ_FAILED). Valid until
    // the next operation other than skip().
    [[nodiscard]] std::span<const std::byte> window(Scl_status& status) {
        return window(1, status);
    }
    // The same with at least `count` bytes, at most WINDOW_BYTES, or with all that are left.
    [[nodiscard]] std::span<const std::byte> window(std::size_t count, Scl_status& status) {
        assert(count <= WINDOW_BYTES);
        if (buffered_size() < count && !status.has_failed()) refill(count, status);
        return buffered_bytes();
    }
    // Steps over bytes of the window, at most as many as it has.
    void skip(std::size_t count) {
        assert(count <= buffered_size());
        (void)take(count);
    }

    // Limits each refill to so many bytes, or to the number asked for if that is larger. For random
    // access, which never uses the rest of a large window. At most WINDOW_BYTES, which is the
    // initial limit.
    void limit_read_ahead(std::size_t bytes) {
        assert(bytes <= WINDOW_BYTES);
        read_ahead_ = bytes;
    }

    // Large enough that the cost of a system call does not show, small enough to stay in the
    // second-level cache until it is used up.
    static constexpr std::size_t WINDOW_BYTES = std::size_t{64} << 10;

protected:
    std::size_t read_beyond_window(std::span<std::byte> bytes, Scl_status& status) override;

private:
    void refill(std::size_t wanted, Scl_status& status);
    [[nodiscard]] unsigned char read_char_beyond_window();

    std::unique_ptr<std::byte[]>
        storage_; // WINDOW_BYTES, allocated at the first refill; not for contents in memory
    std::size_t read_ahead_ = WINDOW_BYTES;
    Scl_status* status_ = nullptr;
};

} // namespace scl
