// An old data set file with anything in it: upgrading it fails, or gives a file that can be loaded.

#include "fuzz_file.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"
#include "tla/upgrade/upgrade_data_set.hpp"

#include <cstdlib>

namespace {

// Tables without their duplicates are shorter than a reader assumes: the next one may seem to lie
// behind the end.
void check_loads(const scl::Scl_heap_buffer& upgraded) {
    const fuzz::Fuzz_file file(upgraded.contents());
    tla::Tla_data_set_connector_file connector;
    scl::Scl_status status;
    std::u16string path;
    scl::scl_stow(file.path(), path);
    connector.set_parameter("DataFileName", path, status);
    connector.open(status);
    connector.load(status, false);
    const bool may_end = connector.key_count() > 1 && status == scl::SCL_STATUS_END_OF_DATA;
    if (status.has_failed() && !may_end) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Fuzz_file file({reinterpret_cast<const std::byte*>(data), size});
    scl::Scl_heap_buffer upgraded;
    scl::Scl_status status;
    tla::upgrade_data_set(file.path(), upgraded, status);
    if (!status.has_failed() && !upgraded.contents().empty()) check_loads(upgraded);
    return 0;
}
