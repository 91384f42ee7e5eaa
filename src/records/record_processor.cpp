#include "records/record_processor.hpp"

#include "records/formatter_types.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/scl_string.hpp"

namespace tla {

namespace {

constexpr std::uint8_t RECORD_END = 0;

} // namespace

Record_processor::Record_processor(std::span<const Formatter_type_id> types,
                                   std::span<const std::uint64_t> key_positions) {
    columns_.reserve(types.size());
    for (const Formatter_type_id& type : types) {
        columns_.push_back({create_formatter(type), false});
    }
    for (const std::uint64_t position : key_positions) {
        columns_.at(position).is_key = true;
    }
}

void Record_processor::process(std::span<std::u16string> fields, scl::Scl_ostream& out,
                               scl::Scl_status& status) {
    if (fields.empty() || fields.size() != columns_.size()) return;
    for (std::size_t i = 0; i < fields.size() && !status.has_failed(); ++i) {
        process_field(columns_[i], fields[i], out, status);
    }
    if (!status.has_failed() && columns_.back().formatter != nullptr) {
        out.write_le(RECORD_END, status);
    }
}

void Record_processor::process_field(const Column& column, std::u16string& field,
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
