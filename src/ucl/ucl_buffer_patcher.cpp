#include "ucl/ucl_buffer_patcher.hpp"

#include <algorithm>
#include <array>
#include <iterator>

namespace ucl {

namespace {

constexpr std::size_t UNIT_BYTES = 2;
// Large enough that the calls to the buffer cost little, small enough for the stack.
constexpr std::size_t CHUNK_BYTES = std::size_t{16} << 10;

// Copies the bytes from `begin` up to `end`. The content may be a file larger than memory, so what
// is not in memory goes through a chunk.
void copy(const scl::Scl_buffer& content, std::uint64_t begin, std::uint64_t end,
          scl::Scl_ostream& out, scl::Scl_status& status) {
    const std::span<const std::byte> in_memory = content.contents();
    if (!in_memory.empty()) return out.write(end - begin, in_memory.data() + begin, status);
    std::array<std::byte, CHUNK_BYTES> chunk; // NOLINT: not read before it is written
    while (begin < end && !status.has_failed()) {
        const std::size_t wanted = std::min<std::uint64_t>(end - begin, chunk.size());
        const std::size_t count = content.read_at(begin, std::span(chunk).first(wanted), status);
        // The content is shorter than its size. Without an error this would loop forever.
        if (count == 0 && !status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
        out.write(count, chunk.data(), status);
        begin += count;
    }
}

} // namespace

bool Ucl_buffer_patcher::begin() {
    if (in_transaction_) return false;
    in_transaction_ = true;
    texts_at_begin_ = texts_.size();
    return true;
}

// The changes are in the queue already; they only lose their mark.
bool Ucl_buffer_patcher::commit() {
    if (!in_transaction_) return false;
    for (const Edits::iterator edit : on_trial_) {
        edit->second.on_trial = false;
    }
    on_trial_.clear();
    in_transaction_ = false;
    return true;
}

// Takes time by the length of the transaction, not of the queue.
bool Ucl_buffer_patcher::rollback() {
    if (!in_transaction_) return false;
    for (const Edits::iterator edit : on_trial_) {
        edits_.erase(edit);
    }
    on_trial_.clear();
    texts_.resize(texts_at_begin_);
    in_transaction_ = false;
    return true;
}

void Ucl_buffer_patcher::drop_all() {
    on_trial_.clear();
    edits_.clear();
    texts_.clear();
    in_transaction_ = false;
}

bool Ucl_buffer_patcher::add_edit(std::uint64_t offset, std::uint64_t length,
                                  std::u16string_view text) {
    if (offset % UNIT_BYTES != 0 || length % UNIT_BYTES != 0 || offset + length < offset) {
        return false;
    }
    if (!is_free(offset, length)) return false;
    if (length == 0 && text.empty()) return true; // or committed() would tell of no change
    make_room_on_trial();
    const Edit_key key{offset, length != 0};
    const Edit edit{length, texts_.size(), text.size(), in_transaction_};
    texts_ += text;
    const auto queued = edits_.emplace(key, edit);
    if (in_transaction_) on_trial_.push_back(queued);
    return true;
}

// Reserves before queueing. If memory ran out between the two, the queue would hold a change that
// rollback() does not know.
void Ucl_buffer_patcher::make_room_on_trial() {
    if (in_transaction_ && on_trial_.size() == on_trial_.capacity()) {
        on_trial_.reserve(2 * on_trial_.size() + 1);
    }
}

// Invariant: ranges do not overlap, and no insert is inside a range. So only two changes can be in
// the way: the first one behind the inserts at `offset`, and the one before it. For example, with
// ranges 0-4 and 8-10 queued, an edit of 4-8 is free: 0-4 ends at 4, and 8-10 begins at 8. If the
// change before is an insert at `offset`, no range reaches beyond `offset`, by the same invariant.
bool Ucl_buffer_patcher::is_free(std::uint64_t offset, std::uint64_t length) const {
    const auto next = edits_.upper_bound({offset, false});
    if (length != 0 && next != edits_.end() && next->first.offset < offset + length) return false;
    if (next == edits_.begin()) return true;
    const auto& [key, edit] = *std::prev(next);
    return key.offset + edit.length <= offset;
}

// The end of the last change that is not on trial. Changes do not overlap, so none ends behind it.
std::uint64_t Ucl_buffer_patcher::last_end() const {
    const auto last = std::find_if(edits_.rbegin(), edits_.rend(),
                                   [](const auto& queued) { return !queued.second.on_trial; });
    return last != edits_.rend() ? last->first.offset + last->second.length : 0;
}

std::u16string_view Ucl_buffer_patcher::text_of(const Edit& edit) const {
    return std::u16string_view(texts_).substr(edit.text_begin, edit.text_length);
}

void Ucl_buffer_patcher::apply(const scl::Scl_buffer& content, scl::Scl_buffer& output,
                               scl::Scl_status& status) const {
    const std::uint64_t size = content.size(false, status);
    if (status.has_failed()) return;
    // Checked before the first byte is written, so that there is no half result.
    if (last_end() > size) return status.push(scl::SCL_STATUS_OUT_OF_BOUNDS);
    scl::Scl_ostream out(output);
    std::uint64_t at = 0; // in the content; what is before it is copied or replaced
    for (const auto& [key, edit] : edits_) {
        if (status.has_failed()) return;
        if (edit.on_trial) continue;
        copy(content, at, key.offset, out, status);
        const std::u16string_view text = text_of(edit);
        for (const char16_t unit : text) {
            out.write_le(unit, status);
        }
        at = key.offset + edit.length;
    }
    copy(content, at, size, out, status);
    out.detach(status);
}

} // namespace ucl
