#include "records/tla_record_processor.hpp"

#include "records/record_layout.hpp"
#include "records/tla_formatters.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

namespace tla {

void Field_token_writer::write(std::u16string_view value, scl::Scl_ostream& out,
                               scl::Scl_status& status) {
    (void)txtdfc::txtdfc_token_values(value, values_); // without text there are none
    out.write_be(static_cast<Tla_token_count>(values_.size()), status);
    for (const std::uint64_t token_value : values_) {
        out.write_be(token_value, status);
    }
}

Tla_record_processor::Tla_record_processor(std::span<const Formatter_type_id> types,
                                           std::span<const std::uint64_t> key_positions) {
    columns_.reserve(types.size());
    for (const Formatter_type_id& type : types) {
        columns_.push_back({tla_create_formatter(type), false});
    }
    for (const std::uint64_t position : key_positions) {
        columns_.at(position).is_key = true;
    }
}

void Tla_record_processor::process(std::span<std::u16string> fields, scl::Scl_ostream& out,
                                   scl::Scl_status& status) {
    if (fields.empty() || fields.size() != columns_.size()) return;
    for (std::size_t i = 0; i < fields.size() && !status.has_failed(); ++i) {
        process_field(columns_[i], fields[i], out, status);
    }
    if (!status.has_failed() && columns_.back().formatter != nullptr) {
        out.write_le(TLA_RECORD_END, status);
    }
}

void Tla_record_processor::process_field(const Column& column, std::u16string& field,
                                         scl::Scl_ostream& out, scl::Scl_status& status) {
    const std::u16string_view value = scl::scl_trimmed(field);
    if (value.empty() && column.is_key) {
        status.push(TLA_STATUS_EMPTY_KEY);
    } else if (column.formatter != nullptr) {
        column.formatter->format(value, field, false);
        token_writer_.write(field, out, status);
    }
}

} // namespace tla
