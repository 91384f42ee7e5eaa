#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tla {

// The fields of a record as UTF-16. Their memory is kept from record to record.
class Record_text {
public:
    void clear() { count_ = 0; }

    // Adds a field; bytes that are no UTF-8 are kept as they are (scl_string.hpp).
    void add(std::string_view utf8);

    // The caller may change them. Valid until the next change here.
    [[nodiscard]] std::span<std::u16string> fields() { return std::span(fields_).first(count_); }

private:
    std::vector<std::u16string> fields_; // only the first `count_` are the record's
    std::size_t count_ = 0;
};

} // namespace tla
