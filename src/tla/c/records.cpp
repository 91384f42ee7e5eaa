#include "tla/c/open_data_set.hpp"

#include <new>

using tla::c::Caller_fault;
using tla::c::guarded;

namespace {

// Leaves a record, or the status says why not.
void read(dsmake_data_set& set, std::int64_t offset, scl::Scl_status& status) {
    set.record.reset();
    auto record = set.connector->read_entry(offset, status);
    if (status.has_failed()) return;
    if (record == nullptr) throw std::bad_alloc();
    set.record = std::move(record);
}

} // namespace

// Records follow one another without a gap, so that each tells where the next begins.
int64_t dsmake_first_record(dsmake_data_set* set) {
    if (set == nullptr || set->open == nullptr) return -1;
    set->next_record = static_cast<std::int64_t>(set->connector->data_start());
    set->records_left = set->connector->record_count();
    return dsmake_next_record(set);
}

// 0 is no record's offset: the header stands there. So it says that there are no more.
int64_t dsmake_next_record(dsmake_data_set* set) {
    std::int64_t offset = 0;
    const bool done = guarded(set, [&](scl::Scl_status& status) {
        // What the last record showed is gone, also when the next one cannot be read.
        set->record.reset();
        if (set->records_left == 0) return;
        const std::uint32_t left = set->records_left - 1;
        set->records_left = 0; // a failure ends them
        read(*set, set->next_record, status);
        if (status.has_failed()) return;
        offset = set->next_record;
        set->next_record += static_cast<std::int64_t>(set->record->record_size());
        set->records_left = left;
    });
    return done ? offset : -1;
}

// In front of the records stand bytes that could be read as one.
int dsmake_read_record(dsmake_data_set* set, int64_t offset) {
    return guarded(set,
                   [&](scl::Scl_status& status) {
                       if (offset < static_cast<std::int64_t>(set->connector->data_start())) {
                           set->record.reset();
                           throw Caller_fault(DSMAKE_BAD_ARGUMENT,
                                              "no record at " + std::to_string(offset));
                       }
                       read(*set, offset, status);
                   })
               ? 0
               : -1;
}

// The values lie in memory of the data set until the next call.
int64_t dsmake_record_values(dsmake_data_set* set, uint32_t field, const uint64_t** values) {
    const bool done = guarded(set, [&](scl::Scl_status&) {
        set->values.clear();
        if (set->record == nullptr || !set->record->values_of(field, set->values)) {
            throw Caller_fault(DSMAKE_BAD_ARGUMENT, "no record was read, or no such field");
        }
    });
    if (!done) return -1;
    if (values != nullptr) *values = set->values.data();
    return static_cast<int64_t>(set->values.size());
}
