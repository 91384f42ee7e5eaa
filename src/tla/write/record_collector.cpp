#include "tla/write/record_collector.hpp"

#include "records/values/record_layout.hpp"
#include "records/values/tla_value_formatter.hpp"

#include <algorithm>

namespace tla {

namespace {

// Estimates the number of records: a line of a customer table has about 32 bytes. The estimate only
// chooses the number of sort buckets, so that a factor of ten more or less costs little time.
constexpr std::uint64_t TEXT_BYTES_A_RECORD = 32;

// A record takes at most 8 bytes for each byte of its line. A character makes one token value of 8
// bytes at most. A field has a count of 2 bytes and the record a closing byte; the separator or
// line end after each field, which makes no token, pays for them.
constexpr std::uint64_t MOST_GROWTH = 8;

bool has_unknown_type(std::span<const Field_descriptor> fields) {
    return std::ranges::any_of(fields, [](const Field_descriptor& field) {
        return !Tla_value_formatter(field.type).is_known();
    });
}

} // namespace

Record_collector::Record_collector(const Tla_header_writer& header, std::u16string_view first_key,
                                   std::uint64_t input_size)
    : next_offset_(header.header_end()), largest_offset_(next_offset_ + MOST_GROWTH * input_size) {
    const auto fields = header.fields();
    const auto key = std::ranges::find(fields, first_key, &Field_descriptor::name);
    // The generator tells of the unknown key. With an unknown type, records cannot be told apart.
    if (key == fields.end() || has_unknown_type(fields)) return;
    pairs_.emplace(input_size / TEXT_BYTES_A_RECORD, largest_offset_);
    pairs_->begin_key(static_cast<std::size_t>(key - fields.begin()));
}

void Record_collector::record_made(std::span<const std::byte> record) {
    ++count_;
    const bool fits = !record.empty() && next_offset_ <= largest_offset_;
    if (!fits) pairs_.reset(); // for good: every later offset depends on this record's size
    if (!pairs_) return;
    pairs_->add(record.first(record.size() - TLA_RECORD_END_BYTES), next_offset_);
    next_offset_ += record.size();
}

} // namespace tla
