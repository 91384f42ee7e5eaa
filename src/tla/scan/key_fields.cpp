#include "tla/scan/key_fields.hpp"

#include "records/values/record_layout.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/status/scl_status.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <optional>

// A file says how many keys it has, but not how long each table is. Tested by
// Scan.FindsEqualRecordsAndAllKeys, and on files that were cut by Scan.RefusesFilesThatAreCut.
namespace tla {

namespace {

using Fields = std::span<const Field_descriptor>;

// The first of that name.
std::optional<std::size_t> field_of(Fields fields, std::u16string_view name) {
    const auto field = std::ranges::find(fields, name, &Field_descriptor::name);
    if (field == fields.end()) return {};
    return static_cast<std::size_t>(field - fields.begin());
}

// A key that is named twice is no second one. There are few, so each is compared.
void add_once(std::vector<std::size_t>& fields, std::size_t field) {
    if (std::ranges::find(fields, field) == fields.end()) fields.push_back(field);
}

// Steps from one key table to the next.
class Key_tables {
public:
    Key_tables(const Tla_data_set_header& header, std::span<const std::byte> file)
        : header_(header), file_(file), at_(static_cast<std::size_t>(header.key_table_offset)) {}

    // The table's name, which it stands in front of; what follows are its pairs. None when they are
    // not in the file.
    [[nodiscard]] std::optional<std::u16string> next_name() {
        const auto rest = file_.subspan(std::min(at_, file_.size()));
        const auto end = std::ranges::find(rest, std::byte{TLA_NAME_END});
        if (end == rest.end()) return {};
        const auto size = static_cast<std::size_t>(end - rest.begin());
        std::u16string name;
        scl::scl_stow({reinterpret_cast<const char*>(rest.data()), size}, name);
        at_ = static_cast<std::size_t>(tla_aligned(at_ + size + 1));
        return at_ <= file_.size() ? std::optional(std::move(name)) : std::nullopt;
    }

    // Leaves the position at the next table's name.
    void skip_pairs() {
        std::uint64_t last_hash = 0;
        for (std::uint32_t left = header_.record_count; left > 0; --left) {
            if (file_.size() - at_ < TLA_INDEX_PAIR_BYTES) return;
            const auto hash = scl::scl_load_le<std::uint64_t>(&file_[at_]);
            const auto offset = scl::scl_load_le<std::uint64_t>(&file_[at_ + sizeof hash]);
            // What follows the last pair is a name: as a number it hardly goes on in order and
            // leads to a record.
            if (hash < last_hash || !is_record(offset)) return;
            last_hash = hash;
            at_ += TLA_INDEX_PAIR_BYTES;
        }
    }

private:
    // What follows a table is the name of the next, which as a number may lie in the records by
    // chance; that a record begins there as well, hardly.
    [[nodiscard]] bool is_record(std::uint64_t offset) {
        if (offset < header_.data_start || offset >= header_.key_table_offset) return false;
        if (begins_.empty()) mark_records();
        return begins_[static_cast<std::size_t>(offset - header_.data_start)];
    }

    // A bit for each byte of the records: an eighth of them, and only for files of several keys.
    void mark_records() {
        begins_.resize(static_cast<std::size_t>(header_.key_table_offset - header_.data_start));
        auto rest = file_.subspan(static_cast<std::size_t>(header_.data_start), begins_.size());
        for (std::uint32_t left = header_.record_count; left > 0; --left) {
            const auto record = tla_whole_record(rest, header_.field_count);
            if (record.empty()) return;
            begins_[begins_.size() - rest.size()] = true;
            rest = rest.subspan(record.size());
        }
    }

    const Tla_data_set_header& header_;
    std::span<const std::byte> file_;
    std::size_t at_;
    std::vector<bool> begins_; // by the byte: whether a record begins there
};

} // namespace

std::vector<std::size_t> fields_of_names(std::span<const Field_descriptor> fields,
                                         std::span<const std::u16string> names,
                                         scl::Scl_status& status) {
    std::vector<std::size_t> keys;
    for (const std::u16string& name : names) {
        const auto field = field_of(fields, name);
        if (!field) {
            status.push(TLA_STATUS_KEY_NAME, scl::Scl_wstring_status_arg(name));
            return {};
        }
        add_once(keys, *field);
    }
    return keys;
}

// The last table's pairs are not looked at: the file ends with them.
std::vector<std::size_t> fields_of_key_tables(const Tla_data_set_header& header,
                                              std::span<const Field_descriptor> fields,
                                              std::span<const std::byte> file,
                                              scl::Scl_status& status) {
    std::vector<std::size_t> keys;
    Key_tables tables(header, file);
    for (std::uint16_t left = header.key_count; left > 0; --left) {
        const auto name = tables.next_name();
        if (!name) {
            status.push(scl::SCL_STATUS_END_OF_DATA);
            return {};
        }
        const auto field = field_of(fields, *name);
        if (!field) {
            // A table of a field that the file has not: what was taken for a name is none.
            status.push(TLA_STATUS_NO_DATA_SET);
            return {};
        }
        add_once(keys, *field);
        if (left > 1) tables.skip_pairs();
    }
    return keys;
}

} // namespace tla
