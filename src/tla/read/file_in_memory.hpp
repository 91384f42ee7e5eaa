#pragma once

#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_buffer.hpp"

#include <memory>

namespace tla {

// Reads a data set file into memory, once, and feeds `crc` with the bytes that the checksum covers.
// The file must be longer than what comes before those. Null after a failure: SCL_STATUS_NO_MEMORY
// when the file does not fit, SCL_STATUS_READ_FAILED as the file reports it.
[[nodiscard]] std::unique_ptr<const scl::Scl_buffer>
read_into_memory(const scl::Scl_buffer& file, scl::Scl_crc64& crc, scl::Scl_status& status);

} // namespace tla
