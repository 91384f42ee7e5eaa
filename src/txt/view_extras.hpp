#pragma once

#include "txt/txt_associations.hpp"
#include "txt/txt_text_store.hpp"
#include "txt/txt_virtual_token.hpp"

#include <cstddef>
#include <list>

namespace txt {

// What redaction writes unless told otherwise.
inline constexpr char32_t REDACTION_CHARACTER = U'*';

// What most views never need.
struct View_extras {
    Txt_text_table table; // of a view that was given none
    Associations associations;
    std::list<Txt_virtual_token> virtual_tokens;
    std::list<Txt_virtual_token> unlinked_virtual_tokens;
    char32_t redaction_character = REDACTION_CHARACTER;
    std::size_t locks = 0;
};

} // namespace txt
