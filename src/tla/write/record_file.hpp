#pragma once

#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_buffer.hpp"

#include <cstdint>

namespace tla {

// Takes the records section of a build, written front to back, and puts it in two places:
//
//     scratch   records
//     output    zeros | records              from header_end on; header and key tables come later
//
// Copying the scratch file into the output afterwards would take one more pass over all records;
// here both files get the same bytes from the same memory, and the checksum is made on the way.
//
// The scratch file is what counts. The output is a copy made early, and nobody shall notice it:
// when it cannot be written, or when room is short for both, the output is emptied and the records
// are copied later, so that a failure is told where and as it was without this class.
class Record_file final : public scl::Scl_buffer {
public:
    // Both must be empty and outlive this object.
    Record_file(scl::Scl_buffer& scratch, scl::Scl_buffer& output, std::uint64_t header_end)
        : scratch_(scratch), output_(output), header_end_(header_end) {}

    // Of the scratch file. Codes are those of writing to it.
    [[nodiscard]] std::uint64_t size(bool in_units, scl::Scl_status& status) const override {
        return scratch_.size(in_units, status);
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        scl::Scl_status& status) const override {
        return scratch_.read_at(offset, bytes, status);
    }
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                  scl::Scl_status& status) override;

    // Whether all records stand in the output as well, and then their checksum.
    [[nodiscard]] bool is_in_output() const { return in_output_; }
    [[nodiscard]] const scl::Scl_crc64& checksum() const { return checksum_; }

    // To be called when all records are written: the scratch file gives back what disk room it had
    // reserved for more, which the output may need.
    void settle();

    // Leaves the output empty, as it has to be after an error in the input.
    void empty_output();

private:
    [[nodiscard]] bool write_to_output(std::uint64_t offset, std::span<const std::byte> bytes);

    scl::Scl_buffer& scratch_;
    scl::Scl_buffer& output_;
    std::uint64_t header_end_;
    bool in_output_ = true;
    scl::Scl_crc64 checksum_;
};

} // namespace tla
