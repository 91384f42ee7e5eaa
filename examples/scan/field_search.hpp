#pragma once

#include "sequences.hpp"
#include "text_forms.hpp"

#include <cstdint>
#include <span>
#include <unordered_map>

namespace scan {

// Tells which values of records stand in a text, in the form of one type: first all are asked for,
// then the text is gone through once, whatever their number; then each has its answer.
class Field_search {
public:
    Field_search(const Text_forms& forms, const tla::Formatter_type_id& type);

    void ask(std::span<const std::uint64_t> values);
    void answer();
    // Whether values that were asked for occur.
    [[nodiscard]] bool occurs(std::span<const std::uint64_t> values) const;

private:
    void learn_text();
    [[nodiscard]] bool may_occur(std::span<const std::uint64_t> values) const;
    void mark(std::uint64_t hash);

    const Text_tokens& tokens_;
    bool is_number_;
    // Single values of the text, and pairs of neighbours: few values of the many records that share
    // a key need to be kept.
    Hash_filter in_text_;
    std::size_t longest_ = 0;
    // By hash, what was asked for and all that it begins with, and whether it stands in the text.
    std::unordered_map<std::uint64_t, bool> asked_;
};

} // namespace scan
