#include "txtdfc/txtdfc_token_limit.hpp"

#include <stdexcept>
#include <string>

namespace txtdfc {

void txtdfc_throw_too_many_tokens(std::size_t limit) {
    throw std::runtime_error("Too many tokens are required to tokenise the text (over " +
                             std::to_string(limit) + ").  Tokenisation has failed.");
}

} // namespace txtdfc
