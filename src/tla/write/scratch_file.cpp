#include "tla/write/scratch_file.hpp"

#include "scl/io/scl_file.hpp"
#include "scl/text/scl_string.hpp"

namespace tla {

namespace {

// Keeps the slash at the end: without it, the name of the root folder would be empty.
std::string folder_of(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? "." : name.substr(0, slash + 1);
}

// Compares identities and not names: "./", "." and an absolute path may be the same folder.
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

// Compares identities, since a hard link of another name leads there, too. The scratch file's entry
// is not followed when it is a link: only the link is replaced, its target stays whole.
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
