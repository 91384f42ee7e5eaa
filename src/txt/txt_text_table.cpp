#include "txt/txt_text_table.hpp"

namespace txt {

std::u16string_view Txt_text_table::insert(std::u16string_view text) {
    const std::u16string_view known = lookup(text);
    if (known.data() != nullptr) return known;
    store_.clear();
    store_.append(text);
    return *texts_.insert(store_.keep()).first;
}

std::u16string_view Txt_text_table::lookup(std::u16string_view text) const {
    const auto found = texts_.find(text);
    return found != texts_.end() ? *found : std::u16string_view();
}

} // namespace txt
