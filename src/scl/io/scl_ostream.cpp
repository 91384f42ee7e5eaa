#include "scl/io/scl_ostream.hpp"

#include <cstring>

namespace scl {

// Keeps the storage from one attachment to the next, uncleared: only what was written is ever read.
void Scl_ostream::attach(Scl_buffer& buffer) {
    if (storage_ == nullptr) storage_ = std::make_unique_for_overwrite<std::byte[]>(STORAGE_BYTES);
    buffer_ = &buffer;
    capacity_ = STORAGE_BYTES;
    used_ = 0;
    begin_offset_ = 0;
}

void Scl_ostream::detach(Scl_status& status) {
    flush(status);
    buffer_ = nullptr;
    capacity_ = 0;
}

// After a failure the bytes are dropped: what should stand before them is missing.
void Scl_ostream::flush(Scl_status& status) {
    if (used_ != 0 && !status.has_failed()) {
        buffer_->write_at(begin_offset_, {storage_.get(), used_}, status);
    }
    begin_offset_ += used_; // after a failure, too: tell() counts what was handed over
    used_ = 0;
}

// False, with an error in the status, when there is nowhere to write to.
bool Scl_ostream::flush_attached(Scl_status& status) {
    if (buffer_ == nullptr) {
        if (!status.has_failed()) status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return false;
    }
    flush(status);
    return true;
}

// After a failed flush these bytes are dropped too. Their offset is beyond the buffer's end, and
// the error of writing there would hide the one that matters.
void Scl_ostream::write_past_storage(std::size_t count, const void* source, Scl_status& status) {
    if (!status.has_failed()) {
        buffer_->write_at(begin_offset_, {static_cast<const std::byte*>(source), count}, status);
    }
    begin_offset_ += count;
}

// Flushes what is stored, then passes a piece larger than the storage on as it is: storing it would
// cost a copy and more calls.
void Scl_ostream::write(std::size_t count, const void* source, Scl_status& status) {
    if (count > capacity_ - used_ && !flush_attached(status)) return;
    if (count > capacity_) {
        write_past_storage(count, source, status);
    } else if (count != 0) {
        std::memcpy(storage_.get() + used_, source, count);
        used_ += count;
    }
}

// Flushes first: the stored bytes belong to the old position.
void Scl_ostream::set_position(std::uint64_t position, Scl_status& status) {
    flush(status);
    begin_offset_ = position;
}

} // namespace scl
