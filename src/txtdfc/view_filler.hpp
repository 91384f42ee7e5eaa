#pragma once

#include "txtdfc/txtdfc_text_view.hpp"
#include "txtdfc/txtdfc_token_pool.hpp"

#include <cstdint>
#include <string_view>

namespace txtdfc {

// Puts the tokens that a Token_reader reads into a view, in memory of a pool.
class View_filler {
public:
    // Both must outlive the filler; the reader must read into the view's text store.
    View_filler(Txtdfc_text_view& view, Txtdfc_token_pool& pool) : view_(view), pool_(pool) {}

    // Throws std::runtime_error when the pool is exhausted.
    void add_token(std::u16string_view text, std::uint32_t type, std::uint64_t offset,
                   std::uint64_t length);
    // The trailer of the last token; a trailer that the text begins with gets a token without text.
    void add_trailer(std::u16string_view text, std::uint64_t offset);

private:
    [[nodiscard]] void* take_slot();

    Txtdfc_text_view& view_;
    Txtdfc_token_pool& pool_;
};

} // namespace txtdfc
