#include "records/record_text.hpp"

#include "scl/scl_string.hpp"

namespace tla {

void Record_text::add(std::string_view utf8) {
    if (count_ == fields_.size()) fields_.emplace_back();
    scl::scl_stow(utf8, fields_[count_++]);
}

} // namespace tla
