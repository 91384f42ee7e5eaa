#include "records/record_text.hpp"

#include "scl/scl_string.hpp"

#include <algorithm>

namespace tla {

void Record_text::add(std::string_view utf8) {
    if (capacity_ - used_ < utf8.size()) grow(utf8.size());
    char16_t* const begin = units_.get() + used_;
    const std::size_t size = scl::scl_convert(utf8, begin);
    fields_.emplace_back(begin, size);
    used_ += size;
}

void Record_text::grow(std::size_t units) {
    constexpr std::size_t LEAST = 4096;
    const std::size_t capacity = std::max({LEAST, 2 * capacity_, used_ + units});
    auto larger = std::make_unique_for_overwrite<char16_t[]>(capacity);
    std::copy_n(units_.get(), used_, larger.get());
    std::size_t at = 0;
    for (std::u16string_view& field : fields_) {
        field = {larger.get() + at, field.size()};
        at += field.size();
    }
    units_ = std::move(larger);
    capacity_ = capacity;
}

} // namespace tla
