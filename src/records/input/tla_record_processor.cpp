#include "records/input/tla_record_processor.hpp"

#include "records/values/record_layout.hpp"
#include "records/values/tla_record_assembly.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <limits>

namespace tla {

namespace {

// A record of up to this size is assembled in the output stream's memory, where a field's count can
// be filled in behind its values. Hardly a record is larger.
constexpr std::size_t ROOM_BYTES = std::size_t{32} << 10;

// A key of an unknown type must not be empty either: the look at the key comes first.
bool refuse_empty_key(scl::Scl_status& status) {
    status.push(TLA_STATUS_EMPTY_KEY);
    return false;
}

constexpr std::uint64_t MOST_TOKENS = std::numeric_limits<Tla_token_count>::max();

// A field of more tokens does not fit into an output's room, so only large records can have one.
static_assert(MOST_TOKENS * TLA_TOKEN_VALUE_BYTES >= scl::Scl_ostream::MOST_ROOM);

// Two ways to take the formatted fields of a record, each `false` when it cannot go on. One puts
// the record together in memory, and nearly every record fits.
struct Assembled_fields {
    template <typename Unit>
    bool add_text(scl::Scl_text_span<Unit> text) {
        assembly.add_field(text);
        return true;
    }
    template <typename Unit>
    bool add_run(scl::Scl_text_span<Unit> run) {
        assembly.add_run(run);
        return true;
    }
    bool add_value(Tla_token_value value) {
        assembly.add_value(value);
        return true;
    }

    Tla_record_assembly& assembly;
};

// The other writes each field at once. It goes over the text twice, so that memory need not hold
// its values. Tested by Record_reader.LargeRecordsHoldTheSameValues.
struct Streamed_fields {
    template <typename Unit>
    bool add_text(scl::Scl_text_span<Unit> text) {
        std::uint64_t count = 0;
        txtdfc::txtdfc_each_token_value(text, [&count](Tla_token_value) { ++count; });
        out.write_be(static_cast<Tla_token_count>(count), status); // wraps
        txtdfc::txtdfc_each_token_value(
            text, [this](Tla_token_value value) { out.write_be(value, status); });
        wraps = wraps || count > MOST_TOKENS;
        return !status.has_failed();
    }
    template <typename Unit>
    bool add_run(scl::Scl_text_span<Unit> run) {
        return add_text(run);
    }
    bool add_value(Tla_token_value value) {
        out.write_be(Tla_token_count{1}, status);
        out.write_be(value, status);
        return !status.has_failed();
    }

    scl::Scl_ostream& out;
    scl::Scl_status& status;
    bool wraps = false; // a field has more tokens than its count can say
};

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
        // Positions are a caller's: at() throws for one that is no column.
        columns_.at(position).is_key = true;
    }
}

void Tla_record_processor::process(Tla_record_text record, scl::Scl_ostream& out,
                                   scl::Scl_status& status) {
    if (record.empty() || record.size() != columns_.size()) return;
    Tla_record_assembly assembly(out.room(ROOM_BYTES, status));
    Assembled_fields fields{assembly};
    if (status.has_failed() || !format_fields(record, status, fields)) return;
    if (ends_with_byte()) assembly.add_end();
    if (assembly.is_full()) return process_large(record, out, status);
    ++record_count_;
    out.advance(assembly.record().size());
    if (listener_ != nullptr) listener_->record_made(assembly.record());
}

void Tla_record_processor::process_large(Tla_record_text record, scl::Scl_ostream& out,
                                         scl::Scl_status& status) {
    ++record_count_;
    Streamed_fields fields{out, status};
    if (format_fields(record, status, fields) && ends_with_byte()) {
        out.write_le(TLA_RECORD_END, status);
    }
    if (fields.wraps && wrapped_.count++ == 0) wrapped_.first = record_count_;
    if (listener_ != nullptr) listener_->record_made({});
}

// Hands the formatted texts to `to`: ASCII as bytes, all else as UTF-16. Stops and returns false
// when a field or `to` fails. Most values are short runs; one look at 16 bytes finds that out and
// saves trimming and general formatting.
template <typename Fields>
bool Tla_record_processor::format_fields(Tla_record_text record, scl::Scl_status& status,
                                         Fields& to) {
    const Column* column = columns_.data();
    for (const Tla_field_text field : record) {
        const bool is_run = txt::txt_is_short_run(field) && column->formatter.is_known();
        const bool is_good = is_run ? to.add_run(column->formatter.format_run(field, buffer_))
                                    : format_text(*column, field, status, to);
        if (!is_good) return false;
        ++column;
    }
    return true;
}

template <typename Fields>
bool Tla_record_processor::format_text(const Column& column, Tla_field_text field,
                                       scl::Scl_status& status, Fields& to) {
    return scl::scl_is_ascii(field) ? format_value(column, scl::scl_trimmed(field), status, to)
                                    : format_wide(column, field, status, to);
}

// Apart, so that the ways of ASCII stay small enough to be inlined.
template <typename Fields>
[[gnu::noinline]] bool Tla_record_processor::format_wide(const Column& column, Tla_field_text field,
                                                         scl::Scl_status& status, Fields& to) {
    if (column.formatter.is_known()) {
        const Tla_token_value value = column.formatter.plain_run_value(field);
        if (value != 0) return to.add_value(value);
    }
    scl::scl_stow(field.view(), buffer_.wide);
    return format_value(column, scl::scl_trimmed(buffer_.wide), status, to);
}

template <typename Value, typename Fields>
bool Tla_record_processor::format_value(const Column& column, Value trimmed,
                                        scl::Scl_status& status, Fields& to) {
    if (trimmed.empty() && column.is_key) return refuse_empty_key(status);
    return !column.formatter.is_known() || to.add_text(column.formatter.format(trimmed, buffer_));
}

} // namespace tla
