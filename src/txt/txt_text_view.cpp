#include "txt/txt_text_view.hpp"

#include <memory>
#include <stdexcept>

namespace txt {

Txt_text_view::~Txt_text_view() {
    for (Txt_physical_token* token = front_; token != nullptr;) {
        Txt_physical_token* const next = token->next_;
        std::destroy_at(token);
        token = next;
    }
}

std::uint32_t Txt_text_view::type() const {
    return type_;
}

void Txt_text_view::throw_not_started() {
    throw std::logic_error("Txt_text_view::add_content() - content not started");
}

std::u16string_view Txt_text_view::insert_text(std::u16string_view text) {
    if (table_ != nullptr) return table_->insert(text);
    if (own_table_ == nullptr) own_table_ = std::make_unique<Txt_text_table>();
    return own_table_->insert(text);
}

} // namespace txt
