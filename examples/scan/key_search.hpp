#pragma once

#include "data_set.hpp"
#include "text_forms.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace scan {

// A value of a key that stands in a text, where it stands there first. Places are in 16-bit units.
struct Key_hit {
    std::size_t place;
    std::size_t end;
    std::size_t key; // among the data set's keys
};

// A record that may be reported, and the place of its hit among all hits.
struct Candidate {
    std::int64_t record_offset;
    std::uint32_t hit;
};

struct Key_hits {
    std::vector<Key_hit> hits;
    // Each record once, with the hit that stands first; by offset, as they stand in the file.
    std::vector<Candidate> candidates;
};

// All records of which a key stands in the text.
[[nodiscard]] Key_hits search_keys(Data_set& data_set, const Text_forms& forms);

} // namespace scan
