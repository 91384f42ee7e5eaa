#include "txtdfc/txtdfc_token_pool.hpp"

#include <stdexcept>
#include <string>

namespace txtdfc {

void throw_too_many_tokens(std::size_t limit) {
    throw std::runtime_error("Too many tokens are required to tokenise the text (over " +
                             std::to_string(limit) + ").  Tokenisation has failed.");
}

// Not cleared: that would cost more than making the tokens of most texts.
void Txtdfc_token_pool::add_block() {
    if (further_.size() == max_further_) throw std::bad_alloc();
    further_.push_back(std::make_unique_for_overwrite<Block>());
    current_ = further_.back().get();
    next_ = 0;
}

} // namespace txtdfc
