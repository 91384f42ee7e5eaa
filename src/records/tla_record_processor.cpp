#include "records/tla_record_processor.hpp"

#include "records/record_layout.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

namespace tla {

namespace {

// What a record may take to be assembled in the output's own memory. A field's count comes before
// its values, whose number is only known behind them.
constexpr std::size_t ROOM_BYTES = std::size_t{32} << 10;

// Puts a record together in a piece of memory.
class Record_assembly {
public:
    explicit Record_assembly(std::span<std::byte> room)
        : begin_(room.data()), at_(begin_), end_(begin_ + room.size()) {}

    // Most fields are one short run, and so one token: they take this straight way.
    template <typename Unit>
    void add_field(scl::Scl_text_span<Unit> text) {
        if (!txt::txt_is_short_run(text)) return add_tokens(text);
        std::byte* const to = take(tla_field_size(1));
        if (to == nullptr) return;
        scl::scl_store_le(to, scl::scl_byte_swapped(Tla_token_count{1}));
        scl::scl_store_le(to + TLA_COUNT_BYTES, scl::scl_byte_swapped(txt::txt_token_value(text)));
    }
    void add_end() {
        if (std::byte* const to = take(TLA_RECORD_END_BYTES)) *to = std::byte{TLA_RECORD_END};
    }

    // Whether something found no place; the record is of no use then.
    [[nodiscard]] bool is_full() const { return is_full_; }
    [[nodiscard]] std::span<const std::byte> record() const { return {begin_, at_}; }

private:
    template <typename Unit>
    [[gnu::noinline]] void add_tokens(scl::Scl_text_span<Unit> text) {
        std::byte* const count_at = take(TLA_COUNT_BYTES);
        const std::byte* const values = at_;
        txtdfc::txtdfc_each_token_value(text, [this](Tla_token_value value) {
            if (std::byte* const to = take(TLA_TOKEN_VALUE_BYTES)) {
                scl::scl_store_le(to, scl::scl_byte_swapped(value));
            }
        });
        if (is_full_) return;
        const auto count = static_cast<std::size_t>(at_ - values) / TLA_TOKEN_VALUE_BYTES;
        scl::scl_store_le(count_at, scl::scl_byte_swapped(static_cast<Tla_token_count>(count)));
    }
    // What follows something that found no place may find one; that does no harm.
    std::byte* take(std::size_t bytes) {
        if (static_cast<std::size_t>(end_ - at_) < bytes) {
            is_full_ = true;
            return nullptr;
        }
        at_ += bytes;
        return at_ - bytes;
    }

    std::byte* begin_;
    std::byte* at_;
    std::byte* end_;
    bool is_full_ = false;
};

// A key of an unknown type must not be empty either: the look at the key comes first.
bool refuse_empty_key(scl::Scl_status& status) {
    status.push(TLA_STATUS_EMPTY_KEY);
    return false;
}

// Goes over the text twice, so that memory need not hold its values.
template <typename Unit>
void write_large_field(scl::Scl_text_span<Unit> text, scl::Scl_ostream& out,
                       scl::Scl_status& status) {
    Tla_token_count count = 0; // wraps
    txtdfc::txtdfc_each_token_value(text, [&count](Tla_token_value) { ++count; });
    out.write_be(count, status);
    txtdfc::txtdfc_each_token_value(text,
                                    [&](Tla_token_value value) { out.write_be(value, status); });
}

} // namespace

Tla_record_processor::Tla_record_processor(std::span<const Formatter_type_id> types,
                                           std::span<const std::uint64_t> key_positions,
                                           Tla_record_listener* listener)
    : listener_(listener) {
    columns_.reserve(types.size());
    for (const Formatter_type_id& type : types) {
        columns_.push_back({tla_create_formatter(type), tla_ascii_formatter(type), false});
    }
    for (const std::uint64_t position : key_positions) {
        columns_.at(position).is_key = true;
    }
}

void Tla_record_processor::process(const Tla_record_text& record, scl::Scl_ostream& out,
                                   scl::Scl_status& status) {
    if (record.fields.empty() || record.fields.size() != columns_.size()) return;
    Record_assembly assembly(out.room(ROOM_BYTES, status));
    const auto add = [&](auto text) {
        assembly.add_field(text);
        return true;
    };
    if (status.has_failed() || !format_fields(record, status, add)) return;
    if (ends_with_byte()) assembly.add_end();
    if (assembly.is_full()) return process_large(record, out, status);
    out.advance(assembly.record().size());
    if (listener_ != nullptr) listener_->record_made(assembly.record());
}

void Tla_record_processor::process_large(const Tla_record_text& record, scl::Scl_ostream& out,
                                         scl::Scl_status& status) {
    const auto write = [&](auto text) {
        write_large_field(text, out, status);
        return !status.has_failed();
    };
    if (format_fields(record, status, write) && ends_with_byte()) {
        out.write_le(TLA_RECORD_END, status);
    }
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
        const bool is_good = is_ascii ? format_ascii(*column, field, status, use)
                                      : format_other(*column, field, status, use);
        if (!is_good) return false;
        ++column;
    }
    return true;
}

template <typename Use>
bool Tla_record_processor::format_ascii(const Column& column, const Tla_field_text& field,
                                        scl::Scl_status& status, Use& use) {
    const Tla_field_text value = scl::scl_trimmed(field);
    if (value.empty() && column.is_key) return refuse_empty_key(status);
    return column.format_ascii == nullptr || use(column.format_ascii(value, ascii_));
}

template <typename Use>
bool Tla_record_processor::format_other(const Column& column, const Tla_field_text& field,
                                        scl::Scl_status& status, Use& use) {
    scl::scl_stow(field.view(), wide_);
    const std::u16string_view value = scl::scl_trimmed(wide_);
    if (value.empty() && column.is_key) return refuse_empty_key(status);
    if (column.formatter == nullptr) return true;
    column.formatter->format(value, wide_, false);
    return use(scl::scl_span_of(wide_));
}

} // namespace tla
