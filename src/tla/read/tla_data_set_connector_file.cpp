#include "tla/read/tla_data_set_connector_file.hpp"

#include "records/tla_formatters.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/io/scl_file_buffer.hpp"
#include "scl/io/scl_held_buffer.hpp"
#include "scl/text/scl_case.hpp"
#include "tla/format/data_set_header.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/read/entry_reader.hpp"
#include "tla/read/key_index.hpp"
#include "tla/read/key_value.hpp"
#include "tla/read/lookup.hpp"
#include "tla/read/pair_reader.hpp"
#include "tla/read/record_finder.hpp"
#include "tla/read/token_counts.hpp"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace tla {

namespace {

constexpr std::string_view FILE_NAME_PARAMETER = "DataFileName";
// How these were made nobody but the program that made the file knows.
constexpr std::uint8_t VERSION_WITH_GIVEN_HASHES = 1;
// A sample is 8 bytes in a block of 64 KiB, a key's name seldom longer than this.
constexpr std::size_t SAMPLE_READ_AHEAD_BYTES = 512;

// Large enough that a call's cost does not show, small enough for the cache.
constexpr std::size_t HELD_PIECE_BYTES = std::size_t{256} << 10;

// A number of offsets in the width of the file's record count, which it never exceeds; should it, a
// wrapped number would read the wrong pairs.
std::uint32_t checked_u32(std::int64_t value) {
    if (value < 0) throw std::overflow_error("i64 too negative for u32");
    if (value > std::numeric_limits<std::uint32_t>::max()) {
        throw std::overflow_error("i64 too positive for u32");
    }
    return static_cast<std::uint32_t>(value);
}

// The file's bytes, read piece by piece, each of which is summed up while it is in the cache. The
// 16 bytes before those that are summed up are the magic, which has been compared, and the checksum
// itself. Null after a failure.
std::unique_ptr<const scl::Scl_buffer> held_bytes(const scl::Scl_buffer& file, scl::Scl_crc64& crc,
                                                  scl::Scl_status& status) try {
    auto held = std::make_unique<scl::Scl_held_buffer>(file.size(false, status));
    const std::span<std::byte> room = held->room();
    for (std::size_t at = 0; at < room.size() && !status.has_failed();) {
        const auto piece = room.subspan(at, std::min(HELD_PIECE_BYTES, room.size() - at));
        at += file.read_at(at, piece, status);
        const bool is_first = piece.data() == room.data();
        crc.update(piece.subspan(is_first ? TLA_CHECKED_FROM : 0));
    }
    return held;
} catch (const std::bad_alloc&) {
    status = scl::SCL_STATUS_NO_MEMORY;
    return nullptr;
}

} // namespace

// An open file and what it is read through, kept from one operation to the next for the buffers.
struct Tla_data_set_connector_file::Source {
    Source(std::unique_ptr<const scl::Scl_buffer> opened, const Tla_data_set_header& header)
        : file(std::move(opened)), pairs(*file), entries(*file, header) {}

    std::unique_ptr<const scl::Scl_buffer> file;
    Pair_reader pairs;
    Entry_reader entries;
    Key_tokeniser tokeniser;
};

Tla_data_set_connector_file::Tla_data_set_connector_file() = default;

Tla_data_set_connector_file::~Tla_data_set_connector_file() = default;

void Tla_data_set_connector_file::set_parameter(std::string_view name, std::u16string_view value,
                                                scl::Scl_status& /*status*/) {
    if (scl::scl_utf8_compare_nc(name, FILE_NAME_PARAMETER) == 0) data_file_name_ = value;
}

void Tla_data_set_connector_file::open(scl::Scl_status& status) {
    source_.reset();
    auto file = std::make_unique<scl::Scl_file_buffer>(
        data_file_name_, scl::Scl_file_open::existing, scl::Scl_file_access::read,
        scl::SCL_FILE_PLAIN, scl::SCL_FILE_AT_RANDOM, status);
    if (status.has_failed()) {
        status = TLA_STATUS_NOT_OPEN;
    } else {
        source_ = std::make_unique<Source>(std::move(file), header_);
    }
}

// What stays is what the interface promises to keep; see there.
void Tla_data_set_connector_file::close() {
    data_file_name_.clear();
    header_.fields.clear();
    header_.index_offset = 0;
    header_.key_count = 0;
    header_.record_count = 0;
    source_.reset();
    loaded_ = false;
    held_ = false;
    block_size_ = 0;
    largest_counts_.clear();
}

void Tla_data_set_connector_file::load(scl::Scl_status& status, bool accept_any_version) {
    if (loaded_) return;
    if (!is_open()) {
        status = TLA_STATUS_NOT_OPEN;
        return;
    }
    tla_read_header(*source_->file, data_file_name_, accept_any_version, header_, status);
    if (!status.has_failed()) read_body(status);
    if (status.has_failed()) return;
    // Not before the checksum is right: what a damaged file says of its counts misleads.
    block_size_ = index_block_size(header_.record_count, header_.key_count);
    if (block_size_ == 0) {
        status = TLA_STATUS_TOO_MANY_PAIRS;
        return;
    }
    // Names and samples grow with the file: where they take all memory, it is not the caller's
    // fault.
    try {
        read_key_indexes(status);
    } catch (const std::exception&) {
        status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(data_file_name_));
    }
    loaded_ = !status.has_failed();
}

// The one pass over the file: it takes the checksum and, when asked to, keeps the bytes.
void Tla_data_set_connector_file::read_body(scl::Scl_status& status) {
    const std::uint64_t size = file_size();
    if (size <= TLA_CHECKED_FROM) {
        status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(data_file_name_));
        return;
    }
    scl::Scl_crc64 crc;
    if (held_) {
        auto bytes = held_bytes(*source_->file, crc, status);
        if (!status.has_failed()) source_ = std::make_unique<Source>(std::move(bytes), header_);
    } else {
        crc.update(scl::Scl_sub_buffer(*source_->file, TLA_CHECKED_FROM, size, status), status);
    }
    if (!status.has_failed() && crc.result(false) != header_.stored_checksum) {
        status = TLA_STATUS_CHECKSUM;
    }
}

void Tla_data_set_connector_file::read_key_indexes(scl::Scl_status& status) {
    scl::Scl_buffered_istream in(*source_->file, false, status, scl::Scl_eol::none);
    in.limit_read_ahead(SAMPLE_READ_AHEAD_BYTES);
    in.set_position(header_.index_offset);
    for (std::uint16_t i = 0; i < header_.key_count && !status.has_failed(); ++i) {
        Key_index index = read_key_index(in, header_.record_count, block_size_, status);
        if (!status.has_failed()) key_indexes_.push_back(std::move(index));
    }
}

const std::vector<std::int64_t>&
Tla_data_set_connector_file::record_offsets(scl::Scl_status& status) {
    if (!is_open() || status.has_failed()) {
        status = TLA_STATUS_NOT_OPEN;
        return record_offsets_;
    }
    const std::size_t before = record_offsets_.size();
    // The count is the file's claim; the pairs that carry the offsets cannot exceed its size.
    record_offsets_.reserve(
        before + std::min<std::uint64_t>(header_.record_count, file_size() / TLA_INDEX_PAIR_BYTES));
    if (key_indexes_.empty()) return record_offsets_;
    for (const Index_sample& sample : key_indexes_.front().samples) {
        if (status.has_failed()) break;
        const auto collected = static_cast<std::int64_t>(record_offsets_.size() - before);
        const std::uint32_t missing = header_.record_count - checked_u32(collected);
        source_->pairs.append_offsets(sample.offset, std::min(block_size_, missing),
                                      record_offsets_, status);
    }
    return record_offsets_;
}

std::unique_ptr<Tla_data_set_entry_file>
Tla_data_set_connector_file::read_entry(std::int64_t record_offset, scl::Scl_status& status) {
    if (is_open()) return source_->entries.read(record_offset, status);
    status = TLA_STATUS_NOT_OPEN;
    return nullptr;
}

// The first field of that name; past the list's end when there is none.
std::size_t Tla_data_set_connector_file::field_of(std::u16string_view name) const {
    const auto field = std::ranges::find(header_.fields, name, &Field_descriptor::name);
    return static_cast<std::size_t>(field - header_.fields.begin());
}

// From the value to the key hash and to the key's index; Lookup goes on from there.
void Tla_data_set_connector_file::find_entries(
    const Tla_lookup_value& value, std::u16string_view key_name,
    std::vector<std::unique_ptr<Tla_data_set_entry_file>>& results, scl::Scl_status& status) {
    if (!is_open()) {
        status = TLA_STATUS_NOT_OPEN;
        return;
    }
    const auto index = std::ranges::find(key_indexes_, key_name, &Key_index::name);
    if (index == key_indexes_.end() || status.has_failed()) return;
    const std::size_t field = field_of(key_name);
    std::vector<std::uint64_t> values;
    source_->tokeniser.tokenise(value.text,
                                field < header_.fields.size() ? header_.fields[field].type
                                                              : Tla_simple_formatter::TYPE_ID,
                                values, status);
    if (status.has_failed()) return;
    const bool hash_is_given = version() == VERSION_WITH_GIVEN_HASHES;
    const Wanted_key wanted{
        .field = field, .hash = hash_is_given ? value.hash : key_hash(values), .values = values};
    Lookup(wanted, source_->pairs, source_->entries,
           Tla_record_allowance(file_size(), data_file_name_))
        .find(*index, header_.record_count, results, status);
}

// Whether the file is open and its records are token values; tells when not.
bool Tla_data_set_connector_file::has_token_values(scl::Scl_status& status) const {
    if (!is_open()) {
        status = TLA_STATUS_NOT_OPEN;
    } else if (version() == VERSION_WITH_GIVEN_HASHES) {
        status.push(TLA_STATUS_VERSION, scl::Scl_wstring_status_arg(data_file_name_));
    }
    return !status.has_failed();
}

void Tla_data_set_connector_file::find_records(std::span<const std::uint64_t> values,
                                               std::size_t key,
                                               std::vector<std::int64_t>& record_offsets,
                                               scl::Scl_status& status) {
    if (!has_token_values(status) || key >= key_indexes_.size()) return;
    Key_index& index = key_indexes_[key];
    const std::size_t field = field_of(index.name);
    if (field == header_.fields.size()) return;
    const Wanted_key wanted{.field = field, .hash = key_hash(values), .values = values};
    Record_finder(wanted, source_->pairs, source_->entries,
                  Tla_record_allowance(file_size(), data_file_name_))
        .find(index, record_offsets, status);
}

std::uint32_t Tla_data_set_connector_file::largest_token_count(std::size_t key,
                                                               scl::Scl_status& status) {
    if (!has_token_values(status) || key >= key_indexes_.size()) return 0;
    if (largest_counts_.empty()) {
        auto counts = largest_token_counts(*source_->file, header_, status);
        if (status.has_failed()) return 0;
        largest_counts_ = std::move(counts);
    }
    const std::size_t field = field_of(key_indexes_[key].name);
    return field < largest_counts_.size() ? largest_counts_[field] : 0;
}

std::uint64_t Tla_data_set_connector_file::file_size() const {
    scl::Scl_status never_set;
    return is_open() ? source_->file->size(false, never_set) : 0;
}

std::vector<std::u16string> Tla_data_set_connector_file::key_names() const {
    std::vector<std::u16string> names;
    for (const Key_index& index : key_indexes_) {
        names.push_back(index.name);
    }
    return names;
}

} // namespace tla
