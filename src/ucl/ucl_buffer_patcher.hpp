#pragma once

#include "scl/io/scl_buffer.hpp"
#include "scl/io/scl_ostream.hpp"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace ucl {

// Queues changes of a UTF-16 content and writes the content changed by them. All offsets and
// lengths are bytes of the unchanged content, whatever else is queued.
//
// What is queued never contradicts itself: the first change at an offset wins, and add_* refuses
// (returns false, queues nothing) whatever does not agree with it:
// - a range (an edit or a delete) that overlaps an earlier one, or repeats it; ranges may touch;
// - an insert inside an earlier range, or a range around an earlier insert. An insert at a range's
//   first byte or just after its last one is no conflict.
// Inserts at one offset come out in the order they were queued, before the new text of a range that
// starts there and after that of one that ends there. An edit of length 0 is an insert; a change
// without bytes and text is accepted and not queued.
//
// An odd offset or length would cut a unit and is refused, and so is a range whose end is no 64-bit
// number. Surrogate pairs are the caller's matter. What reaches past the content shows when the
// queue is applied. The queue is kept sorted: queueing costs a search, applying is one pass.
class Ucl_buffer_patcher {
public:
    Ucl_buffer_patcher() = default;
    Ucl_buffer_patcher(const Ucl_buffer_patcher&) = delete;
    Ucl_buffer_patcher& operator=(const Ucl_buffer_patcher&) = delete;
    virtual ~Ucl_buffer_patcher() = default;

    // How many changes are queued, those of an open transaction included.
    [[nodiscard]] virtual std::size_t size() const { return edits_.size(); }
    [[nodiscard]] virtual bool in_transaction() const { return in_transaction_; }

    // Changes queued between begin() and commit() are on trial: rollback() drops them. Transactions
    // do not nest: begin() inside one returns false and changes nothing, and so do commit() and
    // rollback() outside of one.
    virtual bool begin();
    virtual bool commit();
    virtual bool rollback();
    // Empties the queue and ends the transaction.
    virtual void reset() {
        if (in_transaction_ || !edits_.empty()) drop_all();
    }

    // Writes the changed content to the front of `output`, leaving out what is on trial. The queue
    // stays: applying again gives the same. A change past the content's end sets
    // SCL_STATUS_OUT_OF_BOUNDS before anything is written. Afterwards the status can hold
    // SCL_STATUS_END_OF_DATA, when the content is shorter than its size, and what the two buffers
    // report: of files SCL_STATUS_READ_FAILED and SCL_STATUS_WRITE_FAILED. What is written then is
    // not whole.
    virtual void apply(const scl::Scl_buffer& content, scl::Scl_buffer& output,
                       scl::Scl_status& status) const;

    // Offsets and lengths are in bytes; the text is copied. False, and nothing queued, for what the
    // rules above refuse.
    [[nodiscard]] bool add_insert(std::uint64_t offset, std::u16string_view text) {
        return add_edit(offset, 0, text);
    }
    [[nodiscard]] bool add_edit(std::uint64_t offset, std::uint64_t length,
                                std::u16string_view text);
    [[nodiscard]] bool add_delete(std::uint64_t offset, std::uint64_t length) {
        return add_edit(offset, length, {});
    }

    // Whether a change is queued that is not on trial: one from outside a transaction, or from a
    // committed one.
    [[nodiscard]] bool committed() const { return edits_.size() != on_trial_.size(); }

private:
    // Where a change belongs. In the order of the members inserts come before the range at the same
    // offset, which is the order in which apply() writes them.
    struct Edit_key {
        std::uint64_t offset;
        bool is_range;
        auto operator<=>(const Edit_key&) const = default; // NOLINT: not a null pointer
    };
    struct Edit {
        std::uint64_t length;    // bytes
        std::size_t text_begin;  // units in texts_
        std::size_t text_length; // units
        bool on_trial;
    };
    // Sorted, for is_free() and apply(). Equal keys stay in the order of queueing, and iterators
    // stay valid, which on_trial_ needs.
    using Edits = std::multimap<Edit_key, Edit>;

    void drop_all();
    void make_room_on_trial();
    [[nodiscard]] bool is_free(std::uint64_t offset, std::uint64_t length) const;
    [[nodiscard]] std::uint64_t last_end() const;
    [[nodiscard]] std::u16string_view text_of(const Edit& edit) const;

    Edits edits_;
    std::u16string texts_; // of all changes in one, in the order of queueing
    std::vector<Edits::iterator> on_trial_;
    std::size_t texts_at_begin_ = 0; // where the texts of the open transaction begin
    bool in_transaction_ = false;
};

} // namespace ucl

#pragma GCC visibility pop
