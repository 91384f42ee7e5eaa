#include "records/tla_ccnum_formatter.hpp"

namespace tla {

namespace {

bool is_separator(char16_t unit) {
    return unit == u'-' || unit == u' ';
}

} // namespace

const std::string Tla_ccnum_formatter::NAME = "CCNUMBER";

void Tla_ccnum_formatter::format(std::u16string_view input, std::u16string& output,
                                 bool raw) const {
    copy_normalised(input, output, raw);
    std::erase_if(output, [](char16_t unit) { return is_separator(unit); });
}

} // namespace tla
