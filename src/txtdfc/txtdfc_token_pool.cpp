#include "txtdfc/txtdfc_token_pool.hpp"

#include <new>

namespace txtdfc {

void Txtdfc_token_pool::add_block() {
    if (further_.size() == max_further_) throw std::bad_alloc();
    further_.push_back(std::make_unique_for_overwrite<Block>());
    current_ = further_.back().get();
    next_ = 0;
}

} // namespace txtdfc
