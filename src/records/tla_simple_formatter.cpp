#include "records/tla_simple_formatter.hpp"

namespace tla {

const std::string Tla_simple_formatter::NAME = "Simple";

void Tla_simple_formatter::format(std::u16string_view input, std::u16string& output,
                                  bool raw) const {
    copy_normalised(input, output, raw);
}

} // namespace tla
