#pragma once

#include "txtdfc/txtdfc_text_view.hpp"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace txtdfc {

// How many tokens a text may have.
inline constexpr std::size_t TXTDFC_MAX_TOKENS = 15000000;

// std::runtime_error, whose message names the limit.
[[noreturn]] void throw_too_many_tokens(std::size_t limit);

// Memory for tokens, in blocks of slots that stay where they are until the pool goes: no slot is
// given back before. The first block is part of the pool; further ones are taken when needed.
class Txtdfc_token_pool {
public:
    static constexpr std::size_t BLOCK_SLOTS = 1000;
    static constexpr std::size_t MAX_BLOCKS = TXTDFC_MAX_TOKENS / BLOCK_SLOTS;

    explicit Txtdfc_token_pool(std::size_t max_blocks = MAX_BLOCKS)
        : max_further_(max_blocks - 1), current_(&first_) {}
    Txtdfc_token_pool(const Txtdfc_token_pool&) = delete;
    Txtdfc_token_pool& operator=(const Txtdfc_token_pool&) = delete;
    ~Txtdfc_token_pool() = default;

    // The most tokens the pool can hold.
    [[nodiscard]] std::size_t limit() const { return (max_further_ + 1) * BLOCK_SLOTS; }

    // Memory for one token. Throws std::bad_alloc when the pool is exhausted or memory is.
    [[nodiscard]] void* take() {
        if (next_ == BLOCK_SLOTS) add_block();
        return &current_->slots[next_++];
    }

private:
    struct alignas(Txtdfc_physical_token) Slot {
        std::array<std::byte, sizeof(Txtdfc_physical_token)> bytes;
    };
    struct Block {
        std::array<Slot, BLOCK_SLOTS> slots;
    };

    void add_block();

    std::size_t max_further_;
    std::vector<std::unique_ptr<Block>> further_;
    Block* current_;
    std::size_t next_ = 0; // in the current block
    Block first_;          // NOLINT: not read before it is written
};

} // namespace txtdfc
