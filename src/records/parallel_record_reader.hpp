#pragma once

#include "records/record_batch.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <future>
#include <span>

namespace tla {

// Reads records as Tla_record_reader does, on as many processors as there are: this thread reads
// and writes, and others make records of the lines, a batch each. Records come out in the order of
// their lines, and of several faults the first one counts. What fits into one batch takes no
// further thread.
class Parallel_record_reader {
public:
    // `in` and `out` must outlive the reader. `types` and `key_positions` are as
    // Tla_record_processor takes them.
    Parallel_record_reader(scl::Scl_buffered_istream& in, std::span<const Formatter_type_id> types,
                           std::span<const std::uint64_t> key_positions, scl::Scl_ostream& out);

    [[nodiscard]] Tla_read_result read_records(scl::Scl_status& status);

private:
    struct Slot {
        Slot(std::span<const Formatter_type_id> types, std::span<const std::uint64_t> keys)
            : batch(types, keys) {}

        Record_batch batch;
        std::future<void> processed; // goes first, and waits for its thread then
    };

    [[nodiscard]] Slot& slot_of(std::size_t turn) { return slots_[turn % slots_.size()]; }
    [[nodiscard]] bool start(Slot& slot, bool is_first, scl::Scl_status& status);
    [[nodiscard]] Tla_read_result deliver(Slot& slot, scl::Scl_status& status);

    scl::Scl_buffered_istream& in_;
    scl::Scl_ostream& out_;
    std::deque<Slot> slots_; // taken in turn
};

} // namespace tla
