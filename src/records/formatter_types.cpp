#include "records/formatter_types.hpp"

#include "records/tla_ccnum_formatter.hpp"
#include "records/tla_simple_formatter.hpp"
#include "records/tla_simplenc_formatter.hpp"
#include "scl/scl_compare.hpp"

#include <algorithm>
#include <array>

namespace tla {

namespace {

using Formatter_pointer = std::unique_ptr<const Tla_formatter_base>;

struct Formatter_type {
    const std::string& name;
    Formatter_type_id id;
    Formatter_pointer (*create)();
};

template <typename Formatter>
constexpr Formatter_type make_type() {
    return {Formatter::NAME, Formatter::TYPE_ID,
            []() -> Formatter_pointer { return std::make_unique<Formatter>(); }};
}

constexpr std::array TYPES = {make_type<Tla_simple_formatter>(),
                              make_type<Tla_simplenc_formatter>(),
                              make_type<Tla_ccnum_formatter>()};

const Formatter_type* find_type(const Formatter_type_id& id) {
    const auto* const found =
        std::find_if(TYPES.begin(), TYPES.end(), [&id](const auto& type) { return type.id == id; });
    return found == TYPES.end() ? nullptr : found;
}

} // namespace

Formatter_type_id formatter_type_id_from_name(std::string_view name) {
    for (const Formatter_type& type : TYPES) {
        if (name.size() == type.name.size() && scl::scl_utf8_compare_nc(name, type.name) == 0) {
            return type.id;
        }
    }
    return {};
}

const std::string& formatter_name_from_type_id(const Formatter_type_id& id) {
    static const std::string NO_NAME;
    const Formatter_type* const type = find_type(id);
    return type != nullptr ? type->name : NO_NAME;
}

Formatter_pointer create_formatter(const Formatter_type_id& id) {
    const Formatter_type* const type = find_type(id);
    return type != nullptr ? type->create() : nullptr;
}

} // namespace tla
