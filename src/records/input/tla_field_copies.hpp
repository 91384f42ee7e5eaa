#pragma once

#include "records/input/padded_text.hpp"
#include "records/input/tla_record_processor.hpp"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace tla {

// Copies of a record's fields, one behind the other. A record processor reads a block behind each
// field; a caller whose fields have no such padding copies them here first.
class Tla_field_copies {
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
    Padded_text texts_;
    std::vector<std::size_t> ends_; // offsets, as adding a field may move the texts
    std::vector<Tla_field_text> fields_;
};

} // namespace tla
