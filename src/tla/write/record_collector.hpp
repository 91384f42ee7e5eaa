#pragma once

#include "records/input/tla_record_processor.hpp"
#include "records/values/field_descriptor.hpp"
#include "tla/write/header_writer.hpp"
#include "tla/write/key_pairs.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tla {

// Counts the records and collects the pairs of the first key while the records are made, so that
// the scratch file need not be read for them.
//
// It gives up when a reader would see other records than those that were written: with a column of
// unknown type, or a count that wraps. The scratch file is then read as a reader would.
class Record_collector final : public Tla_record_listener {
public:
    // `header` gives the fields and the offset of the first record in the file. `input_size` is the
    // size of the input text in bytes.
    Record_collector(const Tla_header_writer& header, std::u16string_view first_key,
                     std::uint64_t input_size);

    void record_made(std::span<const std::byte> record) override;

    // False when it gave up: the scratch file has to be read.
    [[nodiscard]] bool knows_all() const { return pairs_.has_value(); }
    [[nodiscard]] std::uint64_t record_count() const { return count_; }
    // The pairs of the first key. Only when knows_all().
    [[nodiscard]] Key_pairs& pairs() { return *pairs_; }

private:
    std::optional<Key_pairs> pairs_;
    std::uint64_t count_ = 0;
    std::uint64_t next_offset_;    // in the file
    std::uint64_t largest_offset_; // that the pairs can hold
};

} // namespace tla
