#include "scl/io/scl_ostream.hpp"

#include <cstring>

namespace scl {

// Keeps the storage from one attachment to the next, uncleared: only what was written is ever read.
void Scl_ostream::attach(Scl_buffer& buffer) {
    if (storage_ == nullptr) storage_ = std::make_unique_for_overwrite<std::byte[]>(STORAGE_BYTES);
    buffer_ = &buffer;
    used_ = 0;
    begin_at(0);
}

void Scl_ostream::detach(Scl_status& status) {
    flush(status);
    buffer_ = nullptr;
    piece_ = 0;
}

// The storage begins there. A first piece that does not begin at a multiple is shorter, so that all
// further ones begin at one.
void Scl_ostream::begin_at(std::uint64_t offset) {
    begin_offset_ = offset;
    piece_ = PIECE_BYTES - offset % PIECE_BYTES;
}

void Scl_ostream::flush(Scl_status& status) {
    if (used_ != 0) write_stored(used_, status);
}

// Writes the first bytes of the storage and moves the others to its front. After a failure the
// bytes are dropped: what should stand before them is missing. tell() counts them all the same.
void Scl_ostream::write_stored(std::size_t count, Scl_status& status) {
    if (!status.has_failed()) buffer_->write_at(begin_offset_, {storage_.get(), count}, status);
    used_ -= count;
    std::memmove(storage_.get(), storage_.get() + count, used_);
    begin_at(begin_offset_ + count);
}

// All whole pieces that are stored, one or two. False, with an error in the status, when there is
// nowhere to write to.
bool Scl_ostream::write_pieces(Scl_status& status) {
    if (buffer_ == nullptr) {
        if (!status.has_failed()) status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return false;
    }
    while (used_ >= piece_) {
        write_stored(piece_, status);
    }
    return true;
}

// After a failed flush these bytes are dropped too. Their offset is beyond the buffer's end, and
// the error of writing there would hide the one that matters.
void Scl_ostream::write_past_storage(std::size_t count, const void* source, Scl_status& status) {
    if (!status.has_failed()) {
        buffer_->write_at(begin_offset_, {static_cast<const std::byte*>(source), count}, status);
    }
    begin_at(begin_offset_ + count);
}

// A piece that the storage has no room for is passed on as it is, behind what is stored: storing it
// would cost a copy and more calls.
void Scl_ostream::write(std::size_t count, const void* source, Scl_status& status) {
    if (used_ >= piece_ && !write_pieces(status)) return;
    if (count > STORAGE_BYTES - used_) {
        flush(status);
        write_past_storage(count, source, status);
    } else if (count != 0) {
        std::memcpy(storage_.get() + used_, source, count);
        used_ += count;
    }
}

// Flushes first: the stored bytes belong to the old position.
void Scl_ostream::set_position(std::uint64_t position, Scl_status& status) {
    flush(status);
    begin_at(position);
}

} // namespace scl
