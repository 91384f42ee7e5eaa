#pragma once

#include "scl/io/scl_buffered_istream.hpp"
#include "tla/format/data_set_header.hpp"
#include "tla/read/entries/entry_source.hpp"
#include "tla/read/entries/tla_data_set_entry_file.hpp"

#include <cstdint>
#include <memory>

namespace tla {

// Reads the entries of one file, all through one stream: neighbours in the file then cost one read,
// and a record far away little more than its own bytes.
class Entry_reader {
public:
    // The entries share `source`; the header must outlive the reader. Memory exhausted is thrown
    // (std::bad_alloc), here and below.
    Entry_reader(std::shared_ptr<const Entry_source> source, const Tla_data_set_header& header);

    // The entry at an offset, in bytes from the start of the file. Null after a failure, with the
    // codes of an entry.
    [[nodiscard]] std::unique_ptr<Tla_data_set_entry_file> read(std::int64_t record_offset,
                                                                scl::Scl_status& status);

    // The same entry before it is read.
    [[nodiscard]] std::unique_ptr<Tla_data_set_entry_file> make(std::int64_t record_offset) const;
    // The bytes of a record of version 2, valid until the next operation. Empty unless the whole
    // record is buffered and ends in 0x00; read() then reports why.
    [[nodiscard]] std::span<const std::byte> buffered_record(std::int64_t record_offset,
                                                             scl::Scl_status& status);

private:
    void go_to(std::int64_t record_offset);

    std::shared_ptr<const Entry_source> source_;
    const Tla_data_set_header& header_;
    scl::Scl_buffered_istream stream_;
};

} // namespace tla
