#pragma once

#include "scl/scl_ostream.hpp"
#include "tla/pair_sorter.hpp"
#include "tla/record_comparer.hpp"
#include "tla/tagged_offset.hpp"

#include <cstdint>
#include <span>

namespace tla {

// Writes sorted pairs, and leaves out each whose record equals, in all fields, that of the pair
// written before it with the same hash; every one left out pushes TLA_STATUS_DUPLICATE_LEFT_OUT.
class Key_table_writer final : public Pair_sink {
public:
    // The pairs' record offsets are tagged ones. `header_end` is the file offset of the first
    // record. Everything given must outlive the writer.
    Key_table_writer(Record_comparer& comparer, const Offset_tagger& tagger,
                     std::uint64_t header_end, scl::Scl_ostream& out, scl::Scl_status& status);

    void take(std::span<const Index_pair> pairs) override;

private:
    [[nodiscard]] bool repeats_last(const Index_pair& pair);
    void write(const Index_pair& pair);

    Record_comparer& comparer_;
    const Offset_tagger& tagger_;
    std::uint64_t header_end_;
    scl::Scl_ostream& out_;
    scl::Scl_status& status_;
    Index_pair last_{};
    bool any_ = false; // with no pair written yet there is nothing to compare with
};

} // namespace tla
