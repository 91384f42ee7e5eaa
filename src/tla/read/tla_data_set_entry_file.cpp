#include "tla/read/tla_data_set_entry_file.hpp"

#include "records/record_layout.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/read/entry_reader.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <algorithm>
#include <utility>

namespace tla {

namespace {

constexpr std::uint8_t VERSION_WITH_TEXTS = 1;

std::vector<std::uint64_t> read_token_list(scl::Scl_buffered_istream& in, scl::Scl_status& status) {
    Tla_token_count count = 0;
    in.read_be(count, status);
    // The file may claim more than it holds.
    const std::uint64_t left = in.size(status) - std::min(in.tell(), in.size(status));
    std::vector<std::uint64_t> values;
    values.reserve(std::min<std::uint64_t>(count, left / TLA_TOKEN_VALUE_BYTES));
    for (Tla_token_count i = 0; i < count && !status.has_failed(); ++i) {
        Tla_token_value value = 0;
        in.read_be(value, status);
        if (!status.has_failed()) values.push_back(value);
    }
    return values;
}

} // namespace

Tla_data_set_entry_file::Tla_data_set_entry_file(const std::vector<Field_descriptor>& fields,
                                                 std::uint8_t version, std::uint64_t data_start,
                                                 std::int64_t record_offset,
                                                 const scl::Scl_buffer& file)
    : file_(file),
      fields_(fields),
      record_offset_(record_offset),
      data_start_(data_start),
      version_(version) {}

bool Tla_data_set_entry_file::token_values(std::u16string_view field_name,
                                           std::vector<std::uint64_t>& values,
                                           Formatter_type_id& type) const {
    const std::size_t field = find_field(field_name);
    if (field >= token_lists_.size()) return false;
    type = fields_[field].type;
    values = token_lists_[field];
    return true;
}

bool Tla_data_set_entry_file::text_value(std::u16string_view field_name, std::u16string& text,
                                         Formatter_type_id& type) const {
    const std::size_t field = find_field(field_name);
    std::string_view stored;
    if (!stored_text(field, stored)) return false;
    type = fields_[field].type;
    scl::scl_stow(stored, text);
    return true;
}

bool Tla_data_set_entry_file::stored_text(std::size_t field, std::string_view& text) const {
    if (version_ != VERSION_WITH_TEXTS || field >= std::min(texts_.size(), fields_.size())) {
        return false;
    }
    text = texts_[field];
    return true;
}

void Tla_data_set_entry_file::read(scl::Scl_status& status) {
    Record_source source(file_);
    read(source, status);
}

void Tla_data_set_entry_file::read(Record_source& source, scl::Scl_status& status) {
    read_stored(source, status);
    if (version_ == VERSION_WITH_TEXTS && !status.has_failed()) tokenise_texts();
}

void Tla_data_set_entry_file::read_stored(Record_source& source, scl::Scl_status& status) {
    const auto offset = static_cast<std::uint64_t>(record_offset_);
    scl::Scl_buffered_istream& in = source.stream_at(offset);
    if (version_ == VERSION_WITH_TEXTS) {
        read_texts(in, status);
    } else {
        read_token_lists(in, status);
    }
    record_size_ = in.tell() - offset;
}

// The number of fields when there is none of that name.
std::size_t Tla_data_set_entry_file::find_field(std::u16string_view name) const {
    const auto found = std::ranges::find(fields_, name, &Field_descriptor::name);
    return static_cast<std::size_t>(found - fields_.begin());
}

void Tla_data_set_entry_file::read_token_lists(scl::Scl_buffered_istream& in,
                                               scl::Scl_status& status) {
    while (token_lists_.size() != fields_.size() && !status.has_failed()) {
        token_lists_.push_back(read_token_list(in, status));
    }
    if (status.has_failed()) return;
    std::uint8_t end = TLA_RECORD_END;
    in.read(sizeof end, &end, status);
    if (end != TLA_RECORD_END && !status.has_failed()) status.push(TLA_STATUS_RECORD_END);
}

void Tla_data_set_entry_file::read_texts(scl::Scl_buffered_istream& in, scl::Scl_status& status) {
    std::string text;
    bool ended = false;
    while (!ended && !status.has_failed()) {
        const std::span<const std::byte> window = in.window(status);
        in.skip(take_texts(window, in.tell() - data_start_, text, ended));
        if (window.empty() && !status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
    }
    const bool read_failed = status.has_failed() && !(status == scl::SCL_STATUS_END_OF_DATA);
    if (texts_.size() != fields_.size() && !read_failed) status = TLA_STATUS_VALUE_COUNT;
}

// Returns how many of the bytes, which stand at `position` after the first record's start, belong
// to the record. `text` carries what was gathered of a text from one call to the next.
std::size_t Tla_data_set_entry_file::take_texts(std::span<const std::byte> bytes,
                                                std::uint64_t position, std::string& text,
                                                bool& ended) {
    std::size_t taken = 0;
    while (taken < bytes.size() && !ended) {
        const char byte = tla_scrambled(std::to_integer<char>(bytes[taken]), position + taken);
        ++taken;
        ended = byte == TLA_TEXT_RECORD_END;
        if (ended || byte == TLA_TEXT_END) {
            texts_.push_back(std::exchange(text, {}));
        } else {
            text += byte;
        }
    }
    return taken;
}

void Tla_data_set_entry_file::tokenise_texts() {
    std::u16string wide;
    for (const std::string& text : texts_) {
        scl::scl_stow(text, wide);
        (void)txtdfc::txtdfc_token_values(wide, token_lists_.emplace_back()); // without text, none
    }
}

} // namespace tla
