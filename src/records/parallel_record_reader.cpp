#include "records/parallel_record_reader.hpp"

#include <algorithm>
#include <thread>

namespace tla {

namespace {

// More would wait for the one that reads and writes.
constexpr unsigned MOST_PROCESSORS = 4;

} // namespace

Parallel_record_reader::Parallel_record_reader(scl::Scl_buffered_istream& in,
                                               std::span<const Formatter_type_id> types,
                                               std::span<const std::uint64_t> key_positions,
                                               scl::Scl_ostream& out)
    : in_(in), out_(out) {
    const unsigned processors =
        std::clamp(std::thread::hardware_concurrency(), 1U, MOST_PROCESSORS);
    while (slots_.size() != processors + 1) { // one is read or written
        slots_.emplace_back(types, key_positions);
    }
}

Tla_read_result Parallel_record_reader::read_records(scl::Scl_status& status) {
    Tla_read_result result = Tla_read_result::finished;
    scl::Scl_status reading; // its failure comes after all that is wrong with the lines before
    const auto goes_on = [&] {
        return result == Tla_read_result::finished && !status.has_failed();
    };
    std::size_t turn = 0;
    for (; goes_on(); ++turn) {
        result = deliver(slot_of(turn), status);
        if (!goes_on() || !start(slot_of(turn), turn == 0, reading)) break;
    }
    for (std::size_t i = 1; i < slots_.size() && goes_on(); ++i) {
        result = deliver(slot_of(turn + i), status);
    }
    if (goes_on()) status.push_top(reading);
    return result;
}

// False when there are no more lines. Where no thread can be had, the batch is processed when it is
// delivered.
bool Parallel_record_reader::start(Slot& slot, bool is_first, scl::Scl_status& status) {
    slot.batch.fill(in_, status);
    if (slot.batch.empty()) return false;
    const bool is_only = is_first && in_.tell() == in_.size(status);
    slot.processed =
        std::async(is_only ? std::launch::deferred : std::launch::async | std::launch::deferred,
                   [&slot] { slot.batch.process(); });
    return true;
}

// What the slot was started with, if anything.
Tla_read_result Parallel_record_reader::deliver(Slot& slot, scl::Scl_status& status) {
    if (!slot.processed.valid()) return Tla_read_result::finished;
    slot.processed.get();
    return slot.batch.deliver(out_, status);
}

} // namespace tla
