#include "tla/read/tla_data_set_connector_file.hpp"

#include "records/values/tla_status_codes.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/io/scl_file_buffer.hpp"
#include "scl/text/scl_case.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/read/connector_state.hpp"
#include "tla/read/file_in_memory.hpp"

#include <new>
#include <utility>

namespace tla {

namespace {

constexpr std::string_view FILE_NAME_PARAMETER = "DataFileName";
// Loading reads 8 bytes of each block of 64 KiB; a key's name is seldom longer than this.
constexpr std::size_t SAMPLE_READ_AHEAD_BYTES = 512;

} // namespace

Tla_data_set_connector_file::Tla_data_set_connector_file() : state_(std::make_unique<State>()) {}

Tla_data_set_connector_file::~Tla_data_set_connector_file() {
    release_entries();
}

const std::vector<Field_descriptor>& Tla_data_set_connector_file::field_descriptors() const {
    return state_->fields;
}

std::uint8_t Tla_data_set_connector_file::version() const {
    return state_->header.version().number;
}

std::uint64_t Tla_data_set_connector_file::data_start() const {
    return state_->header.data_start;
}

std::uint16_t Tla_data_set_connector_file::key_count() const {
    return state_->header.key_count;
}

std::uint32_t Tla_data_set_connector_file::record_count() const {
    return state_->header.record_count;
}

bool Tla_data_set_connector_file::is_open() const {
    return state_->source != nullptr;
}

void Tla_data_set_connector_file::hold_in_memory() {
    state_->wants_memory = true;
}

void Tla_data_set_connector_file::set_parameter(std::string_view name, std::u16string_view value,
                                                scl::Scl_status& /*status*/) {
    // Other parameters belong to other kinds of connectors, and are passed over.
    if (scl::scl_utf8_compare_nc(name, FILE_NAME_PARAMETER) == 0) state_->data_file_name = value;
}

void Tla_data_set_connector_file::open(scl::Scl_status& status) {
    // An open file is let go first, even when the new one then fails to open.
    state_->source.reset();
    auto file = std::make_unique<scl::Scl_file_buffer>(
        state_->data_file_name, scl::Scl_file_open::existing, scl::Scl_file_access::read,
        scl::SCL_FILE_PLAIN, scl::SCL_FILE_AT_RANDOM, status);
    if (status.has_failed()) {
        status = TLA_STATUS_NOT_OPEN;
    } else {
        attach(std::move(file));
    }
}

// Entries that are still there keep what they were read from.
void Tla_data_set_connector_file::attach(std::shared_ptr<const scl::Scl_buffer> file) {
    if (state_->entry_fields == nullptr) {
        state_->entry_fields = std::make_shared<Entry_fields>(state_->fields);
    }
    state_->source =
        std::make_unique<Source>(std::move(file), state_->entry_fields, state_->header);
}

// The fields go to the entries, if there are any, and are gone here.
void Tla_data_set_connector_file::release_entries() {
    state_->source.reset();
    if (state_->entry_fields != nullptr) state_->entry_fields->keep(state_->fields);
    state_->entry_fields.reset();
}

// Keeps what the interface says it keeps: key indexes and record offsets.
void Tla_data_set_connector_file::close() {
    state_->data_file_name.clear();
    release_entries();
    state_->header.key_table_offset = 0;
    state_->header.key_count = 0;
    state_->header.record_count = 0;
    state_->loaded = false;
    state_->wants_memory = false;
    state_->block_size = 0;
    state_->largest_counts.clear();
}

void Tla_data_set_connector_file::load(scl::Scl_status& status, bool accept_any_version) {
    if (state_->loaded) return;
    if (!is_open()) {
        status = TLA_STATUS_NOT_OPEN;
        return;
    }
    // The only place where memory runs out in proportion to the file: fields, samples, bytes.
    try {
        load_open_file(status, accept_any_version);
    } catch (const std::bad_alloc&) {
        status = scl::SCL_STATUS_NO_MEMORY;
    }
    state_->loaded = !status.has_failed();
}

// Fields are many times as large as their list, so the list is counted first and believed when the
// checksum is right. With a wrong one the counts mean nothing either.
void Tla_data_set_connector_file::load_open_file(scl::Scl_status& status, bool accept_any_version) {
    tla_read_header(state_->source->file(), state_->data_file_name, accept_any_version,
                    state_->header, status);
    if (!status.has_failed()) read_body(status);
    if (!status.has_failed()) {
        tla_read_fields(state_->source->file(), state_->data_file_name, state_->header,
                        state_->fields, status);
        state_->entry_fields->index_names();
    }
    if (status.has_failed()) return;
    // 0 when the pairs of all keys would not fit into the numbers that index them.
    state_->block_size = index_block_size(state_->header.record_count, state_->header.key_count);
    if (state_->block_size == 0) {
        status = TLA_STATUS_TOO_MANY_PAIRS;
        return;
    }
    read_key_indexes(status);
}

// One pass over the file takes the checksum and, when asked to, keeps the bytes.
void Tla_data_set_connector_file::read_body(scl::Scl_status& status) {
    const std::uint64_t size = file_size();
    // Such a file ends inside its header, whatever that says.
    if (size <= TLA_CHECKED_FROM) {
        status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(state_->data_file_name));
        return;
    }
    scl::Scl_crc64 crc;
    if (state_->wants_memory) {
        auto bytes = read_into_memory(state_->source->file(), crc, status);
        if (!status.has_failed()) attach(std::move(bytes));
    } else {
        crc.update(scl::Scl_sub_buffer(state_->source->file(), TLA_CHECKED_FROM, size, status),
                   status);
    }
    if (!status.has_failed() && crc.result(false) != state_->header.stored_checksum) {
        status = TLA_STATUS_CHECKSUM;
    }
}

// Table after table: only the end of one tells where the next begins.
void Tla_data_set_connector_file::read_key_indexes(scl::Scl_status& status) {
    scl::Scl_buffered_istream in(state_->source->file(), status);
    in.limit_read_ahead(SAMPLE_READ_AHEAD_BYTES);
    in.set_position(state_->header.key_table_offset);
    for (std::uint16_t i = 0; i < state_->header.key_count && !status.has_failed(); ++i) {
        Key_index index =
            read_key_index(in, state_->header.record_count, state_->block_size, status);
        if (!status.has_failed()) state_->key_indexes.push_back(std::move(index));
    }
}

// Buffers keep no position, and reading a file changes nothing in them. The rest is copied: samples
// are few, and what is known of a block's order is written down during lookups.
std::unique_ptr<Tla_data_set_connector_file> Tla_data_set_connector_file::share() const {
    if (!is_open() || !state_->loaded) return nullptr;
    auto other = std::make_unique<Tla_data_set_connector_file>();
    State& state = *other->state_;
    state.header = state_->header;
    state.fields = state_->fields;
    state.data_file_name = state_->data_file_name;
    state.block_size = state_->block_size;
    state.key_indexes = state_->key_indexes;
    state.wants_memory = state_->wants_memory;
    state.loaded = true;
    other->attach(state_->source->shared->file);
    state.entry_fields->index_names();
    return other;
}

// Empty too for an open file that is not in memory: buffers of files have no contents.
std::span<const std::byte> Tla_data_set_connector_file::bytes_in_memory() const {
    return is_open() ? state_->source->file().contents() : std::span<const std::byte>();
}

std::uint64_t Tla_data_set_connector_file::file_size() const {
    scl::Scl_status never_set;
    return is_open() ? state_->source->file().size(false, never_set) : 0;
}

std::vector<std::u16string> Tla_data_set_connector_file::key_names() const {
    std::vector<std::u16string> names;
    for (const Key_index& index : state_->key_indexes) {
        names.push_back(index.name);
    }
    return names;
}

std::vector<std::size_t> Tla_data_set_connector_file::key_fields() const {
    std::vector<std::size_t> fields;
    for (const Key_index& index : state_->key_indexes) {
        fields.push_back(field_of(index.name));
    }
    return fields;
}

} // namespace tla
