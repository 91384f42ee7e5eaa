#include "records/values/tla_formatters.hpp"
#include "records/values/tla_key_hash.hpp"
#include "records/values/tla_status_codes.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/read/complete_lookup.hpp"
#include "tla/read/connector_state.hpp"
#include "tla/read/entries/token_counts.hpp"
#include "tla/read/rule_lookup.hpp"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

// The operations of Tla_data_set_connector_file on a file that is loaded: record_offsets,
// read_entry, find_entries, find_records, largest_token_count.

namespace tla {

namespace {

// The number of offsets collected so far never exceeds record_count, which has 32 bits. If it ever
// did, a wrapped number would read the wrong pairs.
std::uint32_t checked_u32(std::int64_t value) {
    if (value < 0) throw std::overflow_error("i64 too negative for u32");
    if (value > std::numeric_limits<std::uint32_t>::max()) {
        throw std::overflow_error("i64 too positive for u32");
    }
    return static_cast<std::uint32_t>(value);
}

} // namespace

const std::vector<std::int64_t>&
Tla_data_set_connector_file::record_offsets(scl::Scl_status& status) {
    if (!is_open() || status.has_failed()) {
        status = TLA_STATUS_NOT_OPEN;
        return state_->record_offsets;
    }
    const std::size_t before = state_->record_offsets.size();
    // record_count is only claimed; the file's size bounds how many pairs there can be.
    state_->record_offsets.reserve(
        before +
        std::min<std::uint64_t>(state_->header.record_count, file_size() / TLA_INDEX_PAIR_BYTES));
    if (state_->key_indexes.empty()) return state_->record_offsets;
    for (const Index_sample& sample : state_->key_indexes.front().samples) {
        if (status.has_failed()) break;
        // Samples stand a block apart, so only the last block can be short.
        const auto collected = static_cast<std::int64_t>(state_->record_offsets.size() - before);
        const std::uint32_t missing = state_->header.record_count - checked_u32(collected);
        state_->source->pairs.append_offsets(sample.offset, std::min(state_->block_size, missing),
                                             state_->record_offsets, status);
    }
    return state_->record_offsets;
}

// No entry is told like any other failure: a caller that passes over it must not lose a record.
std::unique_ptr<Tla_data_set_entry_file>
Tla_data_set_connector_file::read_entry(std::int64_t record_offset, scl::Scl_status& status) try {
    if (is_open()) return state_->source->entries.read(record_offset, status);
    status = TLA_STATUS_NOT_OPEN;
    return nullptr;
} catch (const std::bad_alloc&) {
    status = scl::SCL_STATUS_NO_MEMORY;
    return nullptr;
}

// The index of the first field of that name; past the list's end when there is none.
std::size_t Tla_data_set_connector_file::field_of(std::u16string_view name) const {
    return state_->entry_fields != nullptr ? state_->entry_fields->find(name) : 0;
}

// By the type of the key's field. A crafted file may have no such field: then as type Simple.
std::vector<std::uint64_t>
Tla_data_set_connector_file::token_values_of(std::u16string_view text, std::u16string_view key_name,
                                             scl::Scl_status& status) {
    const std::vector<Field_descriptor>& fields = state_->fields;
    const std::size_t field = field_of(key_name);
    std::vector<std::uint64_t> values;
    state_->source->tokeniser.tokenise(
        text, field < fields.size() ? fields[field].type : Tla_simple_formatter::TYPE_ID, values,
        status);
    return values;
}

// Makes the key hash and finds the key's index; Rule_lookup goes on from there.
void Tla_data_set_connector_file::find_entries(
    const Tla_lookup_value& value, std::u16string_view key_name,
    std::vector<std::unique_ptr<Tla_data_set_entry_file>>& results, scl::Scl_status& status) {
    if (!is_open()) {
        status = TLA_STATUS_NOT_OPEN;
        return;
    }
    const auto index = std::ranges::find(state_->key_indexes, key_name, &Key_index::name);
    if (index == state_->key_indexes.end() || status.has_failed()) return;
    const std::vector<std::uint64_t> values = token_values_of(value.text, key_name, status);
    if (status.has_failed()) return;
    const Wanted_key wanted{.field = field_of(key_name),
                            .hash = state_->header.version().hash_is_chosen ? value.hash
                                                                            : tla_key_hash(values),
                            .values = values};
    Rule_lookup(wanted, state_->source->pairs, state_->source->entries,
                Tla_read_budget(file_size(), state_->data_file_name))
        .find(*index, state_->header.record_count, results, status);
}

// Whether the file is open and its records are token values; the status says why not.
bool Tla_data_set_connector_file::has_token_values(scl::Scl_status& status) const {
    if (!is_open()) {
        status = TLA_STATUS_NOT_OPEN;
    } else if (state_->header.version().stores_texts) {
        status.push(TLA_STATUS_VERSION, scl::Scl_wstring_status_arg(state_->data_file_name));
    }
    return !status.has_failed();
}

void Tla_data_set_connector_file::find_records(std::span<const std::uint64_t> values,
                                               std::size_t key,
                                               std::vector<std::int64_t>& record_offsets,
                                               scl::Scl_status& status) {
    if (!has_token_values(status) || key >= state_->key_indexes.size()) return;
    Key_index& index = state_->key_indexes[key];
    const std::size_t field = field_of(index.name);
    if (field == state_->fields.size()) return;
    const Wanted_key wanted{.field = field, .hash = tla_key_hash(values), .values = values};
    Complete_lookup(wanted, state_->source->pairs, state_->source->entries,
                    Tla_read_budget(file_size(), state_->data_file_name))
        .find(index, record_offsets, status);
}

void Tla_data_set_connector_file::find_records(std::u16string_view text, std::size_t key,
                                               std::vector<std::int64_t>& record_offsets,
                                               scl::Scl_status& status) {
    if (!has_token_values(status) || key >= state_->key_indexes.size()) return;
    const std::vector<std::uint64_t> values =
        token_values_of(text, state_->key_indexes[key].name, status);
    if (!status.has_failed()) find_records(values, key, record_offsets, status);
}

std::uint32_t Tla_data_set_connector_file::largest_token_count(std::size_t key,
                                                               scl::Scl_status& status) {
    if (!has_token_values(status) || key >= state_->key_indexes.size()) return 0;
    if (state_->largest_counts.empty()) {
        auto counts = largest_token_counts(state_->source->file(), state_->header, status);
        if (status.has_failed()) return 0;
        state_->largest_counts = std::move(counts);
    }
    const std::size_t field = field_of(state_->key_indexes[key].name);
    return field < state_->largest_counts.size() ? state_->largest_counts[field] : 0;
}

} // namespace tla
