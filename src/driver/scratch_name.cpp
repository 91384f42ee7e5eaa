#include "driver/scratch_name.hpp"

#include "scl/scl_file.hpp"
#include "tla/scratch_file.hpp"

namespace driver {

namespace {

std::string folder_of(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? "." : name.substr(0, slash + 1);
}

bool same_folder(const std::string& a, const std::string& b) {
    scl::Scl_file_identity identity_a;
    scl::Scl_file_identity identity_b;
    return scl::scl_identify_file(a, true, identity_a) == 0 &&
           scl::scl_identify_file(b, true, identity_b) == 0 && identity_a == identity_b;
}

} // namespace

bool leads_to_scratch(const std::string& input_name) {
    scl::Scl_file_identity input;
    scl::Scl_file_identity scratch;
    return scl::scl_identify_file(input_name, true, input) == 0 &&
           scl::scl_identify_file(std::string(tla::SCRATCH_FILE_NAME), false, scratch) == 0 &&
           input == scratch;
}

bool would_be_scratch(const std::string& output_name) {
    return output_name.substr(output_name.rfind('/') + 1) == tla::SCRATCH_FILE_NAME &&
           same_folder(folder_of(output_name), ".");
}

} // namespace driver
