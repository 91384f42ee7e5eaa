#include "records/tla_formatter_base.hpp"

#include "scl/scl_normalize.hpp"
#include "scl/scl_status.hpp"

namespace tla {

void Tla_formatter_base::copy_normalised(std::u16string_view input, std::u16string& output,
                                         bool raw) {
    if (!raw && !scl::scl_is_plain(input) && scl::scl_can_normalize(input)) {
        scl::Scl_status status;
        scl::scl_normalize(input, output, status);
        if (!status.has_failed()) return;
    }
    if (output.data() == input.data()) {
        output.resize(input.size());
    } else {
        output = input;
    }
}

} // namespace tla
