#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace tla {

// The fields of a record as UTF-16, in one piece of memory that is kept from record to record.
class Record_text {
public:
    void clear() {
        fields_.clear();
        used_ = 0;
    }

    // Adds a field; bytes that are no UTF-8 are kept as they are (scl_string.hpp).
    void add(std::string_view utf8);

    // Valid until the next change.
    [[nodiscard]] std::span<const std::u16string_view> fields() const { return fields_; }

private:
    void grow(std::size_t units);

    std::unique_ptr<char16_t[]> units_;
    std::size_t capacity_ = 0;
    std::size_t used_ = 0;
    std::vector<std::u16string_view> fields_;
};

} // namespace tla
