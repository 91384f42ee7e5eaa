#include "tla/read/entries/tla_data_set_entry_file.hpp"

#include "records/values/record_layout.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/io/scl_buffered_istream.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/format/data_set_version.hpp"
#include "tla/read/entries/entry_source.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace tla {

namespace {

// A few steps from count to count cost less than an offset for each field.
constexpr std::size_t NOTED_FIELDS = 64;

// A position may lie behind the end: offsets come from the file.
std::uint64_t bytes_left(const scl::Scl_buffered_istream& in, scl::Scl_status& status) {
    const std::uint64_t size = in.size(status);
    return size - std::min(in.tell(), size);
}

// Removes the first text, and the byte that ends it, from the rest of a record.
// Either byte ends a text, since a damaged record may end early. Past the last one comes an empty
// text, as often as asked.
std::string_view next_text(std::string_view& rest) {
    constexpr std::array ENDS = {TLA_TEXT_END, TLA_TEXT_RECORD_END};
    const std::string_view text =
        rest.substr(0, rest.find_first_of(std::string_view(ENDS.data(), ENDS.size())));
    rest.remove_prefix(text.size() + 1);
    return text;
}

} // namespace

Tla_data_set_entry_file::Tla_data_set_entry_file(std::shared_ptr<const Entry_source> source,
                                                 std::uint8_t version, std::uint64_t data_start,
                                                 std::int64_t record_offset)
    : source_(std::move(source)),
      record_offset_(record_offset),
      data_start_(data_start),
      version_(version) {}

// A field that the record does not have is no fault: false, and nothing is changed.
bool Tla_data_set_entry_file::token_values(std::u16string_view field_name,
                                           std::vector<std::uint64_t>& values,
                                           Formatter_type_id& type) const {
    const std::optional<std::size_t> field = find_field(field_name);
    if (!field) return false;
    type = fields()[*field].type;
    return values_of(*field, values);
}

bool Tla_data_set_entry_file::text_value(std::u16string_view field_name, std::u16string& text,
                                         Formatter_type_id& type) const {
    const std::optional<std::size_t> field = find_field(field_name);
    if (!field || !has_texts()) return false;
    type = fields()[*field].type;
    scl::scl_stow(text_of(*field), text);
    return true;
}

// All texts in one walk: finding each by itself would start at the front every time.
bool Tla_data_set_entry_file::texts(std::vector<std::string_view>& texts) const {
    if (!has_texts()) return false;
    texts.clear();
    std::string_view rest = record_;
    while (texts.size() < field_count_) {
        texts.push_back(next_text(rest));
    }
    return true;
}

// Compared in the form in which the record has them: values as bytes, without a copy.
bool Tla_data_set_entry_file::holds(std::size_t field,
                                    std::span<const std::uint64_t> values) const {
    if (field >= field_count_) return false;
    if (has_texts()) {
        std::vector<std::uint64_t> own;
        return values_of(field, own) && std::ranges::equal(own, values);
    }
    return tla_values_equal(field_bytes(field), values);
}

void Tla_data_set_entry_file::read(scl::Scl_status& status) {
    scl::Scl_buffered_istream in(*source_->file, status);
    read_from(in, status);
}

void Tla_data_set_entry_file::read_from(scl::Scl_buffered_istream& in, scl::Scl_status& status) {
    if (status.has_failed()) return;
    in.set_position(static_cast<std::uint64_t>(record_offset_));
    if (has_texts()) {
        read_texts(in, status);
    } else {
        read_values(in, status);
    }
}

const std::vector<Field_descriptor>& Tla_data_set_entry_file::fields() const {
    return source_->fields->list();
}

// Not beyond the record's own fields: the connector may have loaded more since it was read.
std::optional<std::size_t> Tla_data_set_entry_file::find_field(std::u16string_view name) const {
    const std::size_t field = source_->fields->find(name);
    if (field >= field_count_) return std::nullopt;
    return field;
}

std::span<const std::byte> Tla_data_set_entry_file::bytes() const {
    return in_memory_.empty() ? std::as_bytes(std::span(record_)) : in_memory_;
}

bool Tla_data_set_entry_file::has_texts() const {
    return tla_data_set_version(version_).stores_texts;
}

std::string_view Tla_data_set_entry_file::text_of(std::size_t field) const {
    std::string_view rest = std::string_view(record_).substr(starts_[field]);
    return next_text(rest);
}

// The values of a field.
std::span<const std::byte> Tla_data_set_entry_file::field_bytes(std::size_t field) const {
    if (starts_.empty()) return tla_field_values(bytes(), field);
    return tla_field_values(bytes().subspan(starts_[field / NOTED_FIELDS]), field % NOTED_FIELDS);
}

// Walking a long record from its front for each of its fields would take time in proportion to
// their square.
void Tla_data_set_entry_file::note_starts() {
    if (field_count_ <= NOTED_FIELDS) return;
    // One offset for every 64 fields: a record of 200,000 fields takes 25 KB more, not 1.6 MB.
    starts_.reserve(field_count_ / NOTED_FIELDS + 1);
    std::size_t at = 0;
    for (std::size_t field = 0; field < field_count_; ++field) {
        if (field % NOTED_FIELDS == 0) starts_.push_back(at);
        at += tla_field_size(&bytes()[at]);
    }
}

// On demand: most entries are asked for one field, those of an upgrade for none, and making a
// text's tokens costs more than reading it.
bool Tla_data_set_entry_file::values_of(std::size_t field,
                                        std::vector<std::uint64_t>& values) const {
    if (field >= field_count_) return false;
    if (has_texts()) {
        std::u16string text;
        scl::scl_stow(text_of(field), text);
        (void)txtdfc::txtdfc_token_values(text, values); // without text, none
        return true;
    }
    const auto own = field_bytes(field);
    values.resize(own.size() / TLA_TOKEN_VALUE_BYTES);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = tla_value_at(own, i);
    }
    return true;
}

// Most records are buffered whole.
void Tla_data_set_entry_file::read_values(scl::Scl_buffered_istream& in, scl::Scl_status& status) {
    const auto record = tla_whole_record(in.window(status), fields().size());
    if (record.empty()) return read_long_values(in, status);
    // A window of a file on disk is written over by the next read, so its bytes are copied.
    if (source_->file->contents().empty()) {
        record_.assign(reinterpret_cast<const char*>(record.data()), record.size());
    } else {
        in_memory_ = record; // it stays where it is
    }
    in.skip(record.size());
    field_count_ = fields().size();
    note_starts();
    if (!tla_is_closed(record)) status.push(TLA_STATUS_RECORD_END);
}

// Count by count: nothing tells a record's size in advance.
void Tla_data_set_entry_file::read_long_values(scl::Scl_buffered_istream& in,
                                               scl::Scl_status& status) {
    while (field_count_ != fields().size() && take(TLA_COUNT_BYTES, in, status)) {
        const std::size_t at = record_.size() - TLA_COUNT_BYTES;
        const std::size_t size = tla_field_size(bytes().subspan(at).data());
        if (take(size - TLA_COUNT_BYTES, in, status)) ++field_count_;
    }
    note_starts();
    if (status.has_failed() || !take(TLA_RECORD_END_BYTES, in, status)) return;
    if (!tla_is_closed(bytes())) status.push(TLA_STATUS_RECORD_END);
}

// Appends the stream's next bytes to the record. Checks the file's size before it takes memory,
// whatever the record claims.
bool Tla_data_set_entry_file::take(std::uint64_t size, scl::Scl_buffered_istream& in,
                                   scl::Scl_status& status) {
    if (size > bytes_left(in, status)) {
        status.push(scl::SCL_STATUS_END_OF_DATA);
        return false;
    }
    const std::size_t at = record_.size();
    record_.resize(at + size);
    in.read(size, &record_[at], status);
    return !status.has_failed();
}

// Up to the closing byte, however far away it is: only reading tells a record's length.
void Tla_data_set_entry_file::read_texts(scl::Scl_buffered_istream& in, scl::Scl_status& status) {
    starts_.reserve(std::min(fields().size(), NOTED_FIELDS) + 1);
    starts_.push_back(0);
    bool ended = false;
    while (!ended && !status.has_failed()) {
        const std::span<const std::byte> window = in.window(status);
        in.skip(take_texts(window, in.tell() - data_start_));
        ended = record_.ends_with(TLA_TEXT_RECORD_END);
        if (window.empty() && !status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
    }
    // A wrong number of texts is told rather than the end of the data; a read failure stays.
    const bool told = status.has_failed() && !(status == scl::SCL_STATUS_END_OF_DATA);
    if (field_count_ != fields().size() && !told) status = TLA_STATUS_VALUE_COUNT;
    if (status.has_failed()) field_count_ = 0; // nobody knows which text belongs to which field
}

// Appends unscrambled bytes to the record, up to its closing byte, and returns how many it took.
// The first byte is `position` bytes behind the start of the first record.
std::size_t Tla_data_set_entry_file::take_texts(std::span<const std::byte> bytes,
                                                std::uint64_t position) {
    std::size_t taken = 0;
    for (bool ended = false; taken < bytes.size() && !ended; ++taken) {
        const char byte = tla_scrambled(std::to_integer<char>(bytes[taken]), position + taken);
        ended = byte == TLA_TEXT_RECORD_END;
        record_ += byte;
        if (!ended && byte != TLA_TEXT_END) continue;
        ++field_count_;
        starts_.push_back(record_.size());
    }
    return taken;
}

} // namespace tla
