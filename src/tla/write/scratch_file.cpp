#include "tla/write/scratch_file.hpp"

#include "scl/io/scl_file.hpp"
#include "scl/text/scl_string.hpp"

namespace tla {

namespace {

// With its slash: nothing would be left of the root folder's name without it.
std::string folder_of(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? "." : name.substr(0, slash + 1);
}

// By identity: "./", "." and an absolute path are all the same folder.
bool same_folder(const std::string& a, const std::string& b) {
    scl::Scl_file_identity identity_a;
    scl::Scl_file_identity identity_b;
    return scl::scl_identify_file(a, true, identity_a) == 0 &&
           scl::scl_identify_file(b, true, identity_b) == 0 && identity_a == identity_b;
}

} // namespace

void tla_open_scratch_file(scl::Scl_file_buffer& scratch, scl::Scl_status& status) {
    std::u16string name;
    scl::scl_stow(TLA_SCRATCH_FILE_NAME, name);
    scratch.open(name, scl::Scl_file_open::create, scl::Scl_file_access::read_write,
                 scl::SCL_FILE_SCRATCH, scl::SCL_FILE_FRONT_TO_BACK, status);
}

// Hard links lead there too, so identities are compared and not names. A "mid_buf" that is a link
// itself is only replaced as an entry; what it leads to stays whole.
bool tla_leads_to_scratch(const std::string& input_name) {
    scl::Scl_file_identity input;
    scl::Scl_file_identity scratch;
    return scl::scl_identify_file(input_name, true, input) == 0 &&
           scl::scl_identify_file(std::string(TLA_SCRATCH_FILE_NAME), false, scratch) == 0 &&
           input == scratch;
}

bool tla_would_be_scratch(const std::string& output_name) {
    return output_name.substr(output_name.rfind('/') + 1) == TLA_SCRATCH_FILE_NAME &&
           same_folder(folder_of(output_name), ".");
}

} // namespace tla
