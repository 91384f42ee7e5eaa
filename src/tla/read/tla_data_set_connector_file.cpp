#include "tla/read/tla_data_set_connector_file.hpp"

#include "records/tla_formatters.hpp"
#include "records/tla_status_codes.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/io/scl_file_buffer.hpp"
#include "scl/text/scl_case.hpp"
#include "tla/format/data_set_header.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/read/entry_reader.hpp"
#include "tla/read/key_index.hpp"
#include "tla/read/key_value.hpp"
#include "tla/read/lookup.hpp"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace tla {

namespace {

constexpr std::string_view FILE_NAME_PARAMETER = "DataFileName";
constexpr std::uint8_t VERSION_WITH_GIVEN_HASHES = 1;
constexpr std::size_t SAMPLE_READ_AHEAD_BYTES = 512;

std::uint32_t checked_u32(std::int64_t value) {
    if (value < 0) throw std::overflow_error("i64 too negative for u32");
    if (value > std::numeric_limits<std::uint32_t>::max()) {
        throw std::overflow_error("i64 too positive for u32");
    }
    return static_cast<std::uint32_t>(value);
}

} // namespace

Tla_data_set_connector_file::Tla_data_set_connector_file() = default;

Tla_data_set_connector_file::~Tla_data_set_connector_file() = default;

void Tla_data_set_connector_file::set_parameter(std::string_view name, std::u16string_view value,
                                                scl::Scl_status& /*status*/) {
    if (scl::scl_utf8_compare_nc(name, FILE_NAME_PARAMETER) == 0) data_file_name_ = value;
}

void Tla_data_set_connector_file::open(scl::Scl_status& status) {
    entries_.reset();
    file_ = std::make_unique<scl::Scl_file_buffer>(data_file_name_, scl::Scl_file_open::existing,
                                                   scl::Scl_file_access::read, scl::SCL_FILE_PLAIN,
                                                   scl::SCL_FILE_AT_RANDOM, status);
    if (status.has_failed()) {
        file_.reset();
        status = TLA_STATUS_NOT_OPEN;
        return;
    }
    opened_ = true;
    entries_ = std::make_unique<Entry_reader>(*file_, header_);
}

void Tla_data_set_connector_file::close() {
    data_file_name_.clear();
    header_.fields.clear();
    header_.index_offset = 0;
    header_.key_count = 0;
    header_.record_count = 0;
    opened_ = false;
    entries_.reset();
    file_.reset();
    loaded_ = false;
    block_size_ = 0;
}

void Tla_data_set_connector_file::load(scl::Scl_status& status, bool accept_any_version) {
    if (loaded_) return;
    if (!is_open()) {
        status = TLA_STATUS_NOT_OPEN;
        return;
    }
    tla_read_header(*file_, data_file_name_, accept_any_version, header_, status);
    if (!status.has_failed()) check_checksum(status);
    if (status.has_failed()) return;
    block_size_ = index_block_size(header_.record_count, header_.key_count);
    if (block_size_ == 0) {
        status = TLA_STATUS_TOO_MANY_PAIRS;
        return;
    }
    try {
        read_key_indexes(status);
    } catch (const std::exception&) {
        status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(data_file_name_));
    }
    loaded_ = !status.has_failed();
}

void Tla_data_set_connector_file::check_checksum(scl::Scl_status& status) const {
    const std::uint64_t size = file_->size(false, status);
    if (size <= TLA_CHECKED_FROM) {
        status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(data_file_name_));
        return;
    }
    const scl::Scl_sub_buffer body(*file_, TLA_CHECKED_FROM, size, status);
    scl::Scl_crc64 crc;
    crc.update(body, status);
    if (!status.has_failed() && crc.result(false) != header_.stored_checksum) {
        status = TLA_STATUS_CHECKSUM;
    }
}

void Tla_data_set_connector_file::read_key_indexes(scl::Scl_status& status) {
    scl::Scl_buffered_istream in(*file_, false, status, scl::Scl_eol::none);
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
    scl::Scl_buffered_istream in(*file_, false, status, scl::Scl_eol::none);
    for (const Index_sample& sample : key_indexes_.front().samples) {
        const auto collected = static_cast<std::int64_t>(record_offsets_.size() - before);
        const std::uint32_t missing = header_.record_count - checked_u32(collected);
        in.set_position(sample.offset);
        append_offsets(in, std::min(block_size_, missing), status);
        if (status == scl::SCL_STATUS_END_OF_DATA) status.clear();
    }
    return record_offsets_;
}

void Tla_data_set_connector_file::append_offsets(scl::Scl_buffered_istream& in, std::uint32_t count,
                                                 scl::Scl_status& status) {
    for (std::uint32_t i = 0; i < count && !status.has_failed(); ++i) {
        std::uint64_t hash = 0;
        std::int64_t offset = 0;
        in.read_le(hash, status);
        in.read_le(offset, status);
        if (!status.has_failed()) record_offsets_.push_back(offset);
    }
}

std::unique_ptr<Tla_data_set_entry_file>
Tla_data_set_connector_file::read_entry(std::int64_t record_offset, scl::Scl_status& status) {
    if (is_open()) return entries_->read(record_offset, status);
    status = TLA_STATUS_NOT_OPEN;
    return nullptr;
}

std::unique_ptr<Tla_data_set_entry_file>
Tla_data_set_connector_file::read_stored_entry(std::int64_t record_offset,
                                               scl::Scl_status& status) {
    if (is_open()) return entries_->read_stored(record_offset, status);
    status = TLA_STATUS_NOT_OPEN;
    return nullptr;
}

void Tla_data_set_connector_file::find_entries(
    const Tla_lookup_value& value, std::u16string_view key_name,
    std::vector<std::unique_ptr<Tla_data_set_entry_file>>& results, scl::Scl_status& status) {
    if (!is_open()) {
        status = TLA_STATUS_NOT_OPEN;
        return;
    }
    const auto index = std::ranges::find(key_indexes_, key_name, &Key_index::name);
    if (index == key_indexes_.end() || status.has_failed()) return;
    Wanted_key wanted;
    wanted.field_name = key_name;
    wanted.hash = wanted_hash(value, key_name, wanted.values, status);
    if (status.has_failed()) return;
    Entry_finder finder(*entries_, Tla_record_allowance(file_size(), data_file_name_), wanted,
                        block_size_);
    finder.find(*index, header_.record_count, results, status);
}

std::uint64_t Tla_data_set_connector_file::wanted_hash(const Tla_lookup_value& value,
                                                       std::u16string_view key_name,
                                                       std::vector<std::uint64_t>& values,
                                                       scl::Scl_status& status) {
    const auto field = std::ranges::find(header_.fields, key_name, &Field_descriptor::name);
    const bool known = field != header_.fields.end();
    tokenise_key_value(value.text, known ? field->type : Tla_simple_formatter::TYPE_ID, values,
                       status);
    return version() == VERSION_WITH_GIVEN_HASHES ? value.hash : key_hash(values);
}

std::uint64_t Tla_data_set_connector_file::file_size() const {
    scl::Scl_status never_set;
    return file_ != nullptr ? file_->size(false, never_set) : 0;
}

std::vector<std::u16string> Tla_data_set_connector_file::key_names() const {
    std::vector<std::u16string> names;
    for (const Key_index& index : key_indexes_) {
        names.push_back(index.name);
    }
    return names;
}

} // namespace tla
