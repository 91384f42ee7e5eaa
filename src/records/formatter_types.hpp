#pragma once

#include "records/tla_formatter_base.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace tla {

// The formatter types there are: "Simple", "SimpleNC" and "CCNUMBER".

// Letter case makes no difference; all zero for a name that is none of the three.
[[nodiscard]] Formatter_type_id formatter_type_id_from_name(std::string_view name);

// Empty for an identifier that is none of the three.
[[nodiscard]] const std::string& formatter_name_from_type_id(const Formatter_type_id& id);

// Null for an identifier that is none of the three.
[[nodiscard]] std::unique_ptr<const Tla_formatter_base>
create_formatter(const Formatter_type_id& id);

} // namespace tla
