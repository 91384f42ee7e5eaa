#pragma once

#include "scl/io/scl_buffered_istream.hpp"
#include "tla/format/data_set_header.hpp"
#include "tla/read/tla_data_set_entry_file.hpp"

#include <cstdint>
#include <memory>

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

// Reads the entries of one file.
class Entry_reader {
public:
    // Both must outlive the reader and its entries.
    Entry_reader(const scl::Scl_buffer& file, const Tla_data_set_header& header)
        : file_(file),
          header_(header),
          source_(file),
          pairs_(file, false, attach_status_, scl::Scl_eol::none) {}

    // The entry at an offset in bytes from the start of the file; null after a failure, and when
    // there is no memory for it.
    [[nodiscard]] std::unique_ptr<Tla_data_set_entry_file> read(std::int64_t record_offset,
                                                                scl::Scl_status& status);
    // The same without the token values of version 1.
    [[nodiscard]] std::unique_ptr<Tla_data_set_entry_file> read_stored(std::int64_t record_offset,
                                                                       scl::Scl_status& status);

    // For key tables; kept so that a lookup need not make one.
    [[nodiscard]] scl::Scl_buffered_istream& pairs() { return pairs_; }

private:
    using Read = void (Tla_data_set_entry_file::*)(Record_source&, scl::Scl_status&);
    [[nodiscard]] std::unique_ptr<Tla_data_set_entry_file>
    read_by(Read how, std::int64_t record_offset, scl::Scl_status& status);

    const scl::Scl_buffer& file_;
    const Tla_data_set_header& header_;
    Record_source source_;
    scl::Scl_status attach_status_; // never set: attaching does not fail
    scl::Scl_buffered_istream pairs_;
};

} // namespace tla
