#pragma once

#include "scl/scl_buffered_istream.hpp"

namespace tla {

// What records are read through. Kept from one record to the next, so that neighbours in the file
// are read at once, and a record far away costs little more than its own bytes.
class Record_source {
public:
    // The file must outlive the source.
    explicit Record_source(const scl::Scl_buffer& file);

    // The stream, standing at the offset. For operations that are given a status.
    [[nodiscard]] scl::Scl_buffered_istream& stream_at(std::uint64_t offset);

private:
    scl::Scl_status attach_status_; // never set: attaching does not fail
    scl::Scl_buffered_istream stream_;
};

} // namespace tla
