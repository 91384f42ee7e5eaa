#pragma once

#include "records/values/field_descriptor.hpp"
#include "scl/io/scl_ostream.hpp"

#include <cstdint>
#include <limits>
#include <span>
#include <string>

namespace tla {

// What stands in a header besides the fields.
struct Tla_header_counts {
    std::uint16_t keys;
    std::uint32_t records;
    std::uint64_t records_size; // bytes of the records section

    // With more of either the header would hold a wrapped number, and a reader would take the file
    // for a small one.
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

    // Where the first record begins, in bytes. Known before any record is made, so that records
    // can be noted with their offsets.
    [[nodiscard]] std::uint64_t header_end() const;

    // With 0 for the checksum, which can only be known last. Codes are those of writing to `out`.
    void write(const Tla_header_counts& counts, scl::Scl_ostream& out,
               scl::Scl_status& status) const;

private:
    std::span<const Field_descriptor> fields_;
    std::string field_list_;
};

// Zero bytes up to the next multiple of eight of the output position. Codes are those of writing.
void tla_pad_to_eight(scl::Scl_ostream& out, scl::Scl_status& status);

} // namespace tla
