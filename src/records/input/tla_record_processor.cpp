#include "records/input/tla_record_processor.hpp"

#include "records/values/record_layout.hpp"
#include "records/values/tla_record_assembly.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <limits>

namespace tla {

namespace {

// What a record may take to be assembled in the output's own memory. A field's count comes before
// its values, whose number is only known behind them.
constexpr std::size_t ROOM_BYTES = std::size_t{32} << 10;

// A key of an unknown type must not be empty either: the look at the key comes first.
bool refuse_empty_key(scl::Scl_status& status) {
    status.push(TLA_STATUS_EMPTY_KEY);
    return false;
}

constexpr std::uint64_t MOST_TOKENS = std::numeric_limits<Tla_token_count>::max();

// A field of more tokens does not fit into an output's room, so only large records can have one.
static_assert(MOST_TOKENS * TLA_TOKEN_VALUE_BYTES >= scl::Scl_ostream::MOST_ROOM);

// Goes over the text twice, so that memory need not hold its values. Returns how many there are.
template <typename Unit>
std::uint64_t write_large_field(scl::Scl_text_span<Unit> text, scl::Scl_ostream& out,
                                scl::Scl_status& status) {
    std::uint64_t count = 0;
    txtdfc::txtdfc_each_token_value(text, [&count](Tla_token_value) { ++count; });
    out.write_be(static_cast<Tla_token_count>(count), status); // wraps
    txtdfc::txtdfc_each_token_value(text,
                                    [&](Tla_token_value value) { out.write_be(value, status); });
    return count;
}

} // namespace

Tla_record_processor::Tla_record_processor(std::span<const Field_descriptor> fields,
                                           std::span<const std::uint64_t> key_positions,
                                           Tla_record_listener* listener)
    : listener_(listener) {
    columns_.reserve(fields.size());
    for (const Field_descriptor& field : fields) {
        columns_.push_back({Tla_value_formatter(field.type), false});
    }
    for (const std::uint64_t position : key_positions) {
        columns_.at(position).is_key = true;
    }
}

void Tla_record_processor::process(const Tla_record_text& record, scl::Scl_ostream& out,
                                   scl::Scl_status& status) {
    if (record.fields.empty() || record.fields.size() != columns_.size()) return;
    Tla_record_assembly assembly(out.room(ROOM_BYTES, status));
    const auto add = [&](auto text) {
        assembly.add_field(text);
        return true;
    };
    if (status.has_failed() || !format_fields(record, status, add)) return;
    if (ends_with_byte()) assembly.add_end();
    if (assembly.is_full()) return process_large(record, out, status);
    ++record_count_;
    out.advance(assembly.record().size());
    if (listener_ != nullptr) listener_->record_made(assembly.record());
}

void Tla_record_processor::process_large(const Tla_record_text& record, scl::Scl_ostream& out,
                                         scl::Scl_status& status) {
    bool wraps = false;
    const auto write = [&](auto text) {
        wraps = write_large_field(text, out, status) > MOST_TOKENS || wraps;
        return !status.has_failed();
    };
    ++record_count_;
    if (format_fields(record, status, write) && ends_with_byte()) {
        out.write_le(TLA_RECORD_END, status);
    }
    if (wraps && wrapped_.count++ == 0) wrapped_.first = record_count_;
    if (listener_ != nullptr) listener_->record_made({});
}

// Hands the formatted texts to `use`: ASCII as the bytes it is, anything else as UTF-16. False when
// a field or `use` had a fault; that ends it.
template <typename Use>
bool Tla_record_processor::format_fields(const Tla_record_text& record, scl::Scl_status& status,
                                         Use& use) {
    const Column* column = columns_.data();
    for (const Tla_field_text field : record.fields) {
        const bool is_ascii = record.is_ascii || scl::scl_is_ascii(field);
        const bool is_good = is_ascii ? format_value(*column, scl::scl_trimmed(field), status, use)
                                      : format_value(*column, decoded(field), status, use);
        if (!is_good) return false;
        ++column;
    }
    return true;
}

// The field's UTF-16 form, trimmed.
std::u16string_view Tla_record_processor::decoded(const Tla_field_text& field) {
    scl::scl_stow(field.view(), buffer_.wide);
    return scl::scl_trimmed(buffer_.wide);
}

template <typename Value, typename Use>
bool Tla_record_processor::format_value(const Column& column, Value trimmed,
                                        scl::Scl_status& status, Use& use) {
    if (trimmed.empty() && column.is_key) return refuse_empty_key(status);
    return !column.formatter.is_known() || use(column.formatter.format(trimmed, buffer_));
}

} // namespace tla
