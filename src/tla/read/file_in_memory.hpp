#pragma once

#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_buffer.hpp"

#include <memory>

namespace tla {

// The bytes of a data set file in memory, read once; those that its checksum covers go through
// `crc` on the way. The file must be longer than what comes before them. Null after a failure:
// SCL_STATUS_NO_MEMORY when they do not fit, SCL_STATUS_READ_FAILED as the file reports it.
[[nodiscard]] std::unique_ptr<const scl::Scl_buffer>
tla_read_into_memory(const scl::Scl_buffer& file, scl::Scl_crc64& crc, scl::Scl_status& status);

} // namespace tla
