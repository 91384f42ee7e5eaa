#include "records/tla_simplenc_formatter.hpp"

#include "scl/scl_lower.hpp"

namespace tla {

const std::string Tla_simplenc_formatter::NAME = "SimpleNC";

void Tla_simplenc_formatter::format(std::u16string_view input, std::u16string& output,
                                    bool raw) const {
    copy_normalised(input, output, raw);
    scl::scl_lower(output);
}

} // namespace tla
