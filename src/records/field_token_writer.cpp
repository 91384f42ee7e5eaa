#include "records/field_token_writer.hpp"

#include "txtdfc/txtdfc_token_values.hpp"

namespace tla {

void Field_token_writer::write(std::u16string_view value, scl::Scl_ostream& out,
                               scl::Scl_status& status) {
    (void)txtdfc::txtdfc_token_values(value, values_); // without text there are none
    out.write_be(static_cast<std::uint16_t>(values_.size()), status);
    for (const std::uint64_t token_value : values_) {
        out.write_be(token_value, status);
    }
}

} // namespace tla
