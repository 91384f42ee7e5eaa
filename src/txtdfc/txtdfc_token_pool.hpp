#pragma once

#include "txtdfc/txtdfc_physical_token.hpp"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace txtdfc {

// Memory for tokens, in blocks of slots that stay where they are until the pool goes. The first
// block is part of the pool; further ones are taken when needed.
class Txtdfc_token_pool {
public:
    static constexpr std::size_t BLOCK_SLOTS = 1000;
    static constexpr std::size_t MAX_BLOCKS = 15000;

    explicit Txtdfc_token_pool(std::size_t max_blocks = MAX_BLOCKS)
        : max_further_(max_blocks - 1), current_(&first_) {}
    Txtdfc_token_pool(const Txtdfc_token_pool&) = delete;
    Txtdfc_token_pool& operator=(const Txtdfc_token_pool&) = delete;
    ~Txtdfc_token_pool() = default;

    // The most tokens the pool can hold.
    [[nodiscard]] std::size_t limit() const { return (max_further_ + 1) * BLOCK_SLOTS; }

    // Memory for one token. Throws std::bad_alloc when the pool is exhausted or memory is.
    [[nodiscard]] void* take() {
        if (free_ != nullptr) return take_free();
        if (next_ == BLOCK_SLOTS) add_block();
        return &current_->slots[next_++];
    }

    // Gives back a slot whose token is destroyed; it is the first to be taken again.
    void give_back(void* slot);

    // Forgets all tokens and frees the further blocks, so that the limit counts anew. The caller
    // warrants that no token is alive, that is, that the views they were in are gone.
    void rewind() {
        further_.clear();
        current_ = &first_;
        next_ = 0;
        free_ = nullptr;
    }

private:
    struct alignas(Txtdfc_physical_token) Slot {
        std::array<std::byte, sizeof(Txtdfc_physical_token)> bytes;
    };
    struct Block {
        std::array<Slot, BLOCK_SLOTS> slots;
    };

    void* take_free();
    void add_block();

    std::size_t max_further_;
    std::vector<std::unique_ptr<Block>> further_;
    Block* current_;
    std::size_t next_ = 0; // in the current block
    void* free_ = nullptr; // a slot given back; its first word leads to the next one
    Block first_;          // NOLINT: not read before it is written
};

} // namespace txtdfc
