#include "tla/write/record_file.hpp"

#include <vector>

namespace tla {

// Failures that the output's copy causes or meets stay in a status of their own.
void Record_file::write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                           scl::Scl_status& status) {
    scl::Scl_status first_try;
    scratch_.write_at(offset, bytes, first_try);
    if (first_try.has_failed() && in_output_) {
        empty_output(); // it may have the room that the scratch file lacks
        return scratch_.write_at(offset, bytes, status);
    }
    if (first_try.has_failed()) return status.push_top(first_try);
    if (in_output_ && !write_to_output(offset, bytes)) empty_output();
}

// The zeros keep the header's place: a buffer can only be written up to its end. They are no
// header, so that a reader refuses a file that is left unfinished.
bool Record_file::write_to_output(std::uint64_t offset, std::span<const std::byte> bytes) {
    scl::Scl_status status;
    if (offset == 0) output_.write_at(0, std::vector<std::byte>(header_end_), status);
    if (!status.has_failed()) output_.write_at(header_end_ + offset, bytes, status);
    checksum_.update(bytes);
    return !status.has_failed();
}

void Record_file::settle() {
    scl::Scl_status nobody_listens;
    scratch_.truncate(scratch_.size(false, nobody_listens), nobody_listens);
}

// When even cutting fails, the bytes stay until they are written over, or the output is removed.
void Record_file::empty_output() {
    in_output_ = false;
    scl::Scl_status nobody_listens;
    if (output_.size(false, nobody_listens) != 0) output_.truncate(0, nobody_listens);
}

} // namespace tla
