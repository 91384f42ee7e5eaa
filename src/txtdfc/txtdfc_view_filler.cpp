#include "txtdfc/txtdfc_view_filler.hpp"

#include "scl/scl_string.hpp"
#include "txt/txt_token_type.hpp"

#include <new>

namespace txtdfc {

void Txtdfc_view_filler::add_token(std::u16string_view text, std::uint32_t type,
                                   std::uint64_t offset, std::uint64_t length) {
    void* const slot = take_slot();
    const std::u16string_view kept = view_.keep(text);
    view_.add_content(*::new (slot) Txtdfc_physical_token(type, kept, view_, offset, length));
}

void Txtdfc_view_filler::add_trailer(std::u16string_view text, std::uint64_t offset) {
    if (view_.cback() == nullptr) add_token(scl::W_EMPTY, txt::TXT_TOKEN_UNCLASSIFIED, offset, 0);
    view_.cback()->trailer_text(text);
}

void* Txtdfc_view_filler::take_slot() {
    try {
        return pool_.take();
    } catch (const std::bad_alloc&) {
        txtdfc_throw_too_many_tokens(pool_.limit());
    }
}

} // namespace txtdfc
