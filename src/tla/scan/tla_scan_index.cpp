#include "tla/scan/tla_scan_index.hpp"

#include "records/values/tla_status_codes.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/io/scl_file_buffer.hpp"
#include "scl/status/scl_status.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/read/file_in_memory.hpp"
#include "tla/scan/index_state.hpp"
#include "tla/scan/key_fields.hpp"

#include <utility>

namespace tla {

namespace {

// A buffer over bytes that somebody else holds.
class Bytes_of_caller final : public scl::Scl_memory_buffer {
public:
    explicit Bytes_of_caller(std::span<const std::byte> bytes) : bytes_(bytes) {}
    [[nodiscard]] std::span<const std::byte> contents() const override { return bytes_; }

private:
    std::span<const std::byte> bytes_;
};

// Where the records and the key tables begin is checked here, and what is in them by those who
// read.
void read_header(const scl::Scl_buffer& file, std::u16string_view name, Tla_data_set_header& header,
                 scl::Scl_status& status) {
    tla_read_header(file, name, false, header, status);
    if (status.has_failed()) return;
    const std::uint64_t size = file.size(false, status);
    const bool is_whole = size > TLA_CHECKED_FROM && header.data_start <= header.key_table_offset &&
                          header.key_table_offset <= size;
    if (!is_whole) status.push(scl::SCL_STATUS_END_OF_DATA);
}

// That records or key tables do not lie in the file says no more than that it is none.
void name_file(std::u16string_view name, scl::Scl_status& status) {
    const bool is_crafted = status == scl::SCL_STATUS_END_OF_DATA ||
                            status == TLA_STATUS_RECORD_END ||
                            (status == TLA_STATUS_NO_DATA_SET && !status.entries().back().argument);
    if (!is_crafted) return;
    status.clear();
    status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(name));
}

} // namespace

// All tables together may take half of the file's size and 64 MiB, of which some is left for scans.
std::uint64_t Index_state::room_for_pairs() const {
    constexpr std::uint64_t ALLOWANCE = std::uint64_t{48} << 20U;
    const Value_totals& totals = records->totals();
    // What values and keys take, which no scan can do without; pairs get the rest.
    const std::uint64_t others =
        totals.sequences / 8 + Record_table::bytes_of(totals.key_values, records->size());
    const std::uint64_t most = file.size() / 2 + ALLOWANCE;
    return most > others ? most - others : 0;
}

// Other threads wait for the first. Should it fail, the next one that asks tries again.
const Scan_tables& Index_state::tables() const {
    std::call_once(tables_flag_, [this] {
        tables_ =
            std::make_unique<const Scan_tables>(*records, key_order, hashes, room_for_pairs());
        ready_tables_.store(tables_.get(), std::memory_order_release);
    });
    return *tables_;
}

// The checksum is made while the file is read: so it is read once.
std::unique_ptr<const Tla_scan_index>
Tla_scan_index::open(std::u16string_view file_name, std::span<const std::u16string> key_names,
                     scl::Scl_status& status) {
    const scl::Scl_file_buffer opened(file_name, scl::Scl_file_open::existing,
                                      scl::Scl_file_access::read, scl::SCL_FILE_PLAIN,
                                      scl::SCL_FILE_FRONT_TO_BACK, status);
    if (status.has_failed()) {
        status = TLA_STATUS_NOT_OPEN;
        return nullptr;
    }
    Tla_data_set_header header;
    read_header(opened, file_name, header, status);
    name_file(file_name, status);
    if (status.has_failed()) return nullptr;
    scl::Scl_crc64 crc;
    auto contents = read_into_memory(opened, crc, status);
    if (status.has_failed()) return nullptr;
    // Before anything is made of the bytes: a damaged file would be scanned for the wrong records.
    if (crc.result(false) != header.stored_checksum) {
        status = TLA_STATUS_CHECKSUM;
        return nullptr;
    }
    auto index = over(contents->contents(), file_name, key_names, status);
    if (index != nullptr) index->state_->contents = std::move(contents);
    return index;
}

// Whatever the bytes are, a status or an index that can be used.
std::unique_ptr<const Tla_scan_index>
Tla_scan_index::over(std::span<const std::byte> file, std::u16string_view file_name,
                     std::span<const std::u16string> key_names, scl::Scl_status& status) {
    auto state = std::make_unique<Index_state>();
    state->file = file;
    Tla_data_set_header& header = state->header;
    const Bytes_of_caller bytes(file);
    read_header(bytes, file_name, header, status);
    if (!status.has_failed()) tla_read_fields(bytes, file_name, header, state->fields, status);
    if (!status.has_failed()) {
        state->keys = key_names.empty() ? fields_of_key_tables(header, state->fields, file, status)
                                        : fields_of_names(state->fields, key_names, status);
    }
    if (!status.has_failed()) state->take_records(status);
    name_file(file_name, status);
    if (status.has_failed()) return nullptr;
    return std::unique_ptr<const Tla_scan_index>(new Tla_scan_index(std::move(state)));
}

// Hashes are drawn for each index, so that two never have their collisions in common.
void Index_state::take_records(scl::Scl_status& status) {
    std::vector<Value_kind> kinds;
    for (const Field_descriptor& field : fields) {
        kinds.push_back(value_kind_of(field.type));
    }
    key_order.assign(kinds.size(), NO_KEY);
    std::vector<bool> is_key(kinds.size());
    for (std::size_t order = 0; order < keys.size(); ++order) {
        key_order[keys[order]] = order;
        is_key[keys[order]] = true;
    }
    const auto begin = static_cast<std::size_t>(header.data_start);
    const auto size = static_cast<std::size_t>(header.key_table_offset) - begin;
    hashes = Scan_hashes::draw();
    records.emplace(file.subspan(begin, size), header.record_count, std::move(kinds), is_key,
                    status);
}

Tla_scan_index::Tla_scan_index(std::unique_ptr<Index_state> state) : state_(std::move(state)) {}

Tla_scan_index::~Tla_scan_index() = default;

const std::vector<Field_descriptor>& Tla_scan_index::fields() const {
    return state_->fields;
}

std::span<const std::size_t> Tla_scan_index::keys() const {
    return state_->keys;
}

std::uint64_t Tla_scan_index::record_count() const {
    return state_->header.record_count;
}

void Tla_scan_index::prepare() const {
    static_cast<void>(state_->tables());
}

} // namespace tla
