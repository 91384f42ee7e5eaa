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

// Counts records and gathers the pairs of the first key while the records are made, so that the
// scratch file need not be read for them. Where a record cannot be told from its bytes alone (a
// column of unknown type, a count that wraps) it gives up, and the file is read as it is.
class Record_collector final : public Tla_record_listener {
public:
    // `header` tells the fields and where the first record will stand in the file. `input_size`, in
    // bytes, is the size of the text that the records are made of.
    Record_collector(const Tla_header_writer& header, std::u16string_view first_key,
                     std::uint64_t input_size);

    void record_made(std::span<const std::byte> record) override;

    // False when the scratch file has to be read after all.
    [[nodiscard]] bool knows_all() const { return pairs_.has_value(); }
    [[nodiscard]] std::uint64_t record_count() const { return count_; }
    // Of the first key. Only when it knows all.
    [[nodiscard]] Key_pairs& pairs() { return *pairs_; }

private:
    std::optional<Key_pairs> pairs_;
    std::uint64_t count_ = 0;
    std::uint64_t next_offset_;    // in the file
    std::uint64_t largest_offset_; // that the pairs can hold
};

} // namespace tla
