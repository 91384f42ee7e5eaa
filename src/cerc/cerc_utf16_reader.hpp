#pragma once

#include "scl/io/scl_buffered_istream.hpp"
#include "scl/io/scl_endian.hpp"
#include "scl/text/scl_utf.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace cerc {

// What the readers of characters share.
class Cerc_reader_base {
public:
    // Read in place of a character when there is none left; no code point has this value.
    static constexpr char32_t END_OF_DATA = 0xFFFFFFFF;

    // At the front of content it says how that is encoded, and is no part of the text.
    static constexpr char16_t BYTE_ORDER_MARK = 0xFEFF;
};

// Reads little-endian UTF-16, code point by code point. A surrogate without its partner is the code
// point of its own value. The data ends before a last byte that is half a unit. Offsets are in
// bytes. A buffer in memory is read in place; any other, which may be larger than memory, through a
// window.
class Cerc_utf16_reader final : public Cerc_reader_base {
public:
    // The position starts at the buffer's front: the last argument is false. Both must outlive the
    // attachment: read() reports in that status what the buffer does (SCL_STATUS_READ_FAILED).
    // attach() leaves no code of its own, only what size() of a buffer that is not in memory
    // reports. What contents() or size() throws passes through; the reader is detached then.
    //
    // The buffer must not be written to meanwhile: what lies in memory may move when it grows.
    void attach(const scl::Scl_buffer& buffer, scl::Scl_status& status, bool /*at_end*/) {
        detach(); // before anything can throw: the old content may be gone
        const std::span<const std::byte> contents = buffer.contents();
        if (contents.empty()) return attach_stream(buffer, status);
        attach_window(contents);
    }
    // Without effect on a reader that is not attached.
    void detach() {
        stream_.reset();
        attach_window({});
        status_ = nullptr;
    }

    // The next code point, or END_OF_DATA at the end and after a failure. Inline, as it is called
    // for every character; only the rare cases leave the window.
    [[nodiscard]] char32_t read() {
        if (!has_unit()) return stream_ ? read_beyond_window() : END_OF_DATA;
        const char16_t unit = take_unit();
        return scl::scl_is_lead(unit) ? join_with_trail(unit) : unit;
    }

    // Of the next character.
    [[nodiscard]] std::uint64_t tell() const {
        return end_offset_ - static_cast<std::uint64_t>(end_ - at_);
    }
    // To a position where a character starts. One beyond the end sets SCL_STATUS_END_OF_DATA and
    // changes nothing.
    void seek(std::uint64_t offset, scl::Scl_status& status) {
        // One comparison for both sides: an offset past the window's end wraps to a huge number.
        const std::uint64_t back = end_offset_ - offset;
        if (back <= static_cast<std::uint64_t>(end_ - begin_)) {
            at_ = end_ - back;
        } else {
            seek_beyond_window(offset, status);
        }
    }

    // The bytes from the position on that are in memory, possibly none. Valid until the next
    // operation but skip.
    [[nodiscard]] std::span<const std::byte> buffered_bytes() const { return {at_, end_}; }
    // Steps over buffered bytes, up to where a character starts.
    void skip(std::size_t bytes) { at_ += bytes; }

private:
    static constexpr std::size_t UNIT_BYTES = 2;

    [[nodiscard]] bool has_unit() const {
        return static_cast<std::size_t>(end_ - at_) >= UNIT_BYTES;
    }
    [[nodiscard]] char16_t unit_here() const { return scl::scl_load_le<char16_t>(at_); }
    char16_t take_unit() {
        const char16_t unit = unit_here();
        at_ += UNIT_BYTES;
        return unit;
    }

    void attach_window(std::span<const std::byte> bytes) {
        set_window(bytes, 0);
        size_ = bytes.size();
    }
    void set_window(std::span<const std::byte> bytes, std::uint64_t offset) {
        begin_ = bytes.data();
        at_ = bytes.data();
        end_ = bytes.data() + bytes.size();
        end_offset_ = offset + bytes.size();
    }
    void attach_stream(const scl::Scl_buffer& buffer, scl::Scl_status& status);
    [[nodiscard]] bool load_unit();
    [[nodiscard]] char32_t read_beyond_window();
    [[nodiscard]] char32_t join_with_trail(char16_t lead);
    void seek_beyond_window(std::uint64_t offset, scl::Scl_status& status);

    // The window, and the next character in it. Null while there is none.
    const std::byte* begin_ = nullptr;
    const std::byte* at_ = nullptr;
    const std::byte* end_ = nullptr;
    std::uint64_t end_offset_ = 0; // where in the data the window ends
    std::uint64_t size_ = 0;       // of the data, taken when it was attached
    scl::Scl_status* status_ = nullptr;
    std::unique_ptr<scl::Scl_buffered_istream> stream_; // of a buffer that is not in memory
};

} // namespace cerc
