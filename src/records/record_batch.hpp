#pragma once

#include "records/tla_record_processor.hpp"
#include "records/tla_record_reader.hpp"
#include "scl/io/scl_buffered_istream.hpp"
#include "scl/io/scl_buffers.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

namespace tla {

// Whole lines of the input and the records made of them. It shares nothing with other batches, so
// that each can be processed by a thread of its own.
class Record_batch {
public:
    // A batch has about as many bytes, unless one line is longer.
    static constexpr std::size_t BYTES = std::size_t{512} << 10;

    // As Tla_record_processor.
    Record_batch(std::span<const Formatter_type_id> types,
                 std::span<const std::uint64_t> key_positions)
        : processor_(types, key_positions) {}

    // Takes the next lines; none at the end of the input. A failure is left in the status, with the
    // lines before it taken.
    void fill(scl::Scl_buffered_istream& in, scl::Scl_status& status);
    [[nodiscard]] bool empty() const { return lines_.contents().empty(); }

    // Makes records of the lines.
    void process();

    // Writes the records; or, when a line had none, says so as Tla_record_reader::read_records
    // does.
    [[nodiscard]] Tla_read_result deliver(scl::Scl_ostream& out, scl::Scl_status& status) const;

private:
    scl::Scl_heap_buffer lines_;
    scl::Scl_heap_buffer records_;
    scl::Scl_ostream out_;
    scl::Scl_status status_;
    Tla_read_result result_ = Tla_read_result::finished;
    Tla_record_processor processor_;
};

} // namespace tla
