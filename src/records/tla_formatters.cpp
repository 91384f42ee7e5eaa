#include "records/tla_formatters.hpp"

#include "scl/status/scl_status.hpp"
#include "scl/text/scl_case.hpp"
#include "scl/text/scl_normalize.hpp"

#include <algorithm>
#include <array>

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

const std::string Tla_simple_formatter::NAME = "Simple";

void Tla_simple_formatter::format(std::u16string_view input, std::u16string& output,
                                  bool raw) const {
    copy_normalised(input, output, raw);
}

const std::string Tla_simplenc_formatter::NAME = "SimpleNC";

void Tla_simplenc_formatter::format(std::u16string_view input, std::u16string& output,
                                    bool raw) const {
    copy_normalised(input, output, raw);
    scl::scl_lower(output);
}

namespace {

bool is_separator(char16_t unit) {
    return unit == u'-' || unit == u' ';
}

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

const std::string Tla_ccnum_formatter::NAME = "CCNUMBER";

void Tla_ccnum_formatter::format(std::u16string_view input, std::u16string& output,
                                 bool raw) const {
    copy_normalised(input, output, raw);
    std::erase_if(output, [](char16_t unit) { return is_separator(unit); });
}

Formatter_type_id tla_formatter_type_id_from_name(std::string_view name) {
    for (const Formatter_type& type : TYPES) {
        if (name.size() == type.name.size() && scl::scl_utf8_compare_nc(name, type.name) == 0) {
            return type.id;
        }
    }
    return {};
}

const std::string& tla_formatter_name_from_type_id(const Formatter_type_id& id) {
    static const std::string NO_NAME;
    const Formatter_type* const type = find_type(id);
    return type != nullptr ? type->name : NO_NAME;
}

Formatter_pointer tla_create_formatter(const Formatter_type_id& id) {
    const Formatter_type* const type = find_type(id);
    return type != nullptr ? type->create() : nullptr;
}

} // namespace tla
