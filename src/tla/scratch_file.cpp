#include "tla/scratch_file.hpp"

#include "scl/scl_string.hpp"

namespace tla {

void open_scratch_file(scl::Scl_file_buffer& scratch, scl::Scl_status& status) {
    std::u16string name;
    scl::scl_stow(SCRATCH_FILE_NAME, name);
    scratch.open(name, scl::Scl_file_open::create, scl::Scl_file_access::read_write,
                 scl::SCL_FILE_SCRATCH, scl::SCL_FILE_FRONT_TO_BACK, status);
}

} // namespace tla
