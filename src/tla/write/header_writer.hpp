#pragma once

#include "records/values/field_descriptor.hpp"
#include "scl/io/scl_ostream.hpp"

#include <cstdint>
#include <limits>
#include <span>
#include <string>

namespace tla {

// The numbers in a header.
struct Tla_header_counts {
    std::uint16_t keys;
    std::uint32_t records;
    std::uint64_t records_size; // bytes of the records section

    // Larger numbers would wrap in the header, and readers would take the file for a small one.
    [[nodiscard]] static constexpr bool can_hold(std::uint64_t keys, std::uint64_t records) {
        return keys <= std::numeric_limits<std::uint16_t>::max() &&
               records <= std::numeric_limits<std::uint32_t>::max();
    }
};

// Writes the front of a data set file: header, field list, padding.
class Tla_header_writer {
public:
    // The fields must outlive the writer.
    explicit Tla_header_writer(std::span<const Field_descriptor> fields);

    [[nodiscard]] std::span<const Field_descriptor> fields() const { return fields_; }

    // The offset of the first record, in bytes. Known before any record is made, so that pairs can
    // have the records' final offsets.
    [[nodiscard]] std::uint64_t header_end() const;

    // Writes 0 for the checksum, which is known last. Codes are those of writing to `out`.
    void write(const Tla_header_counts& counts, scl::Scl_ostream& out,
               scl::Scl_status& status) const;

private:
    std::span<const Field_descriptor> fields_;
    std::string field_list_;
};

// Writes zero bytes until the output position is a multiple of eight. Codes are those of writing.
void tla_pad_to_eight(scl::Scl_ostream& out, scl::Scl_status& status);

} // namespace tla
