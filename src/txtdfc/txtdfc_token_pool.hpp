#pragma once

#include "txtdfc/txtdfc_text_view.hpp"

#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace txtdfc {

// The largest number of tokens that a text may have.
inline constexpr std::size_t TXTDFC_MAX_TOKENS = 15000000;

// Throws std::runtime_error; the message names the limit.
[[noreturn]] void throw_too_many_tokens(std::size_t limit);

// Memory for tokens, in slots of one size that never move:
//
//     first_      | slot | slot | ... BLOCK_SLOTS |     part of the pool: short texts allocate
//     further_[0] | slot | slot | ... BLOCK_SLOTS |     nothing
//     ...
//
// Destroying a view does not give its slots back. So the limit counts all tokens ever made with the
// pool, less the slots that were given back.
class Txtdfc_token_pool {
public:
    static constexpr std::size_t BLOCK_SLOTS = 1000;
    static constexpr std::size_t MAX_BLOCKS = TXTDFC_MAX_TOKENS / BLOCK_SLOTS;

    // `max_blocks` is at least 1: the one that is part of the pool.
    explicit Txtdfc_token_pool(std::size_t max_blocks = MAX_BLOCKS)
        : max_further_(max_blocks - 1), current_(&first_) {}
    Txtdfc_token_pool(const Txtdfc_token_pool&) = delete;
    Txtdfc_token_pool& operator=(const Txtdfc_token_pool&) = delete;
    ~Txtdfc_token_pool() = default;

    // The most tokens the pool can hold.
    [[nodiscard]] std::size_t limit() const { return (max_further_ + 1) * BLOCK_SLOTS; }

    // Memory for one token: the slot that was given back last, or else a fresh one. Throws
    // std::bad_alloc when the pool has reached its limit or memory runs out.
    [[nodiscard]] void* take() {
        if (free_ != nullptr) return take_free();
        if (next_ == BLOCK_SLOTS) add_block();
        return &current_->slots[next_++];
    }

    // Takes a slot of this pool back. Its token must have been destroyed and be in no view. The
    // next take() returns this slot.
    void give_back(void* slot) { free_ = ::new (slot) Free_slot{free_}; }

private:
    // A free slot holds the link to the next one. The list needs no memory of its own, so giving
    // back cannot fail.
    struct Free_slot {
        Free_slot* next;
    };
    struct alignas(Txtdfc_physical_token) Slot {
        std::array<std::byte, sizeof(Txtdfc_physical_token)> bytes;
    };
    struct Block {
        std::array<Slot, BLOCK_SLOTS> slots;
    };
    static_assert(sizeof(Free_slot) <= sizeof(Slot) && alignof(Free_slot) <= alignof(Slot));

    [[nodiscard]] void* take_free() {
        Free_slot* const slot = free_;
        free_ = slot->next;
        return slot;
    }
    void add_block();

    std::size_t max_further_;
    std::vector<std::unique_ptr<Block>> further_;
    Block* current_;
    std::size_t next_ = 0; // in the current block: where its fresh slots begin
    Free_slot* free_ = nullptr;
    Block first_; // NOLINT: not read before it is written
};

} // namespace txtdfc

#pragma GCC visibility pop
