#pragma once

#include "tla/data_set_header.hpp"
#include "tla/record_source.hpp"
#include "tla/tla_data_set_entry_file.hpp"

#include <cstdint>
#include <memory>

namespace tla {

// Reads the entries of one file.
class Entry_reader {
public:
    // Both must outlive the reader and its entries.
    Entry_reader(const scl::Scl_buffer& file, const Data_set_header& header)
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
    const Data_set_header& header_;
    Record_source source_;
    scl::Scl_status attach_status_; // never set: attaching does not fail
    scl::Scl_buffered_istream pairs_;
};

} // namespace tla
