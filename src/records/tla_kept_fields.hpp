#pragma once

#include "records/kept_text.hpp"
#include "records/tla_record_processor.hpp"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace tla {

// Copies of a record's fields, one behind the other, in memory that a processor may read: for
// fields that lie anywhere.
class Tla_kept_fields {
public:
    void clear() {
        texts_.clear();
        ends_.clear();
    }
    void add(std::string_view field) {
        texts_.append(field);
        ends_.push_back(texts_.view().size());
    }

    // Valid until the next change.
    [[nodiscard]] std::span<const Tla_field_text> fields() {
        fields_.clear();
        const char* begin = texts_.view().data();
        for (const std::size_t end : ends_) {
            fields_.push_back({begin, texts_.view().data() + end});
            begin = fields_.back().end;
        }
        return fields_;
    }

private:
    Kept_text texts_;
    std::vector<std::size_t> ends_;
    std::vector<Tla_field_text> fields_;
};

} // namespace tla
