#pragma once

#include "records/values/field_descriptor.hpp"
#include "scl/status/scl_status.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace tla {

// One record of a data set file.
class Tla_data_set_entry_base {
public:
    Tla_data_set_entry_base() = default;
    Tla_data_set_entry_base(const Tla_data_set_entry_base&) = delete;
    Tla_data_set_entry_base& operator=(const Tla_data_set_entry_base&) = delete;
    virtual ~Tla_data_set_entry_base() = default;

    // The token values and the formatter type of the first field of that name; capitals count.
    // False, with the outputs as they were, when there is none.
    [[nodiscard]] virtual bool token_values(std::u16string_view field_name,
                                            std::vector<std::uint64_t>& values,
                                            Formatter_type_id& type) const = 0;

    // The stored text and the formatter type, likewise. False for every record but those of
    // version 1: later versions store no text.
    [[nodiscard]] virtual bool text_value(std::u16string_view field_name, std::u16string& text,
                                          Formatter_type_id& type) const = 0;

    // Fills the entry from the file; called once.
    virtual void read(scl::Scl_status& status) = 0;
};

} // namespace tla

#pragma GCC visibility pop
