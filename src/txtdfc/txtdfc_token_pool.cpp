#include "txtdfc/txtdfc_token_pool.hpp"

#include <cstring>
#include <new>

namespace txtdfc {

void* Txtdfc_token_pool::take_free() {
    void* const slot = free_;
    std::memcpy(&free_, slot, sizeof free_);
    return slot;
}

void Txtdfc_token_pool::give_back(void* slot) {
    std::memcpy(slot, &free_, sizeof free_);
    free_ = slot;
}

void Txtdfc_token_pool::add_block() {
    if (further_.size() == max_further_) throw std::bad_alloc();
    further_.push_back(std::make_unique_for_overwrite<Block>());
    current_ = further_.back().get();
    next_ = 0;
}

} // namespace txtdfc
