#include "data_set.hpp"

#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"
#include "text_file.hpp"

#include <algorithm>
#include <new>

namespace scan {

Data_set::Data_set(const std::string& name) : name_(name) {
    load();
    read_keys();
}

void Data_set::load() {
    scl::Scl_status status;
    std::u16string wide_name;
    scl::scl_stow(name_, wide_name);
    connector_.set_parameter("DataFileName", wide_name, status);
    connector_.hold_in_memory(); // a scan looks up nearly every word of a text
    connector_.open(status);
    if (!status.has_failed()) connector_.load(status, false);
    check(status);
}

// A file with several keys may have lost its way behind a table from which equal records were left
// out; then names come out wrong, or not at all.
void Data_set::read_keys() {
    const std::vector<std::u16string> names = connector_.key_names();
    for (const std::u16string& key : names) {
        const auto field = std::ranges::find(fields(), key, &tla::Field_descriptor::name);
        if (field == fields().end()) break;
        scl::Scl_status status;
        const std::size_t longest = connector_.largest_token_count(keys_.size(), status);
        check(status);
        keys_.push_back({static_cast<std::size_t>(field - fields().begin()), longest});
    }
    if (keys_.size() != connector_.key_count()) {
        throw File_fault(name_, "not all of its keys can be read; remove lines that are equal in "
                                "every field from its input, and build it again");
    }
}

void Data_set::expect(std::uint64_t sequences) {
    asked_ += sequences;
    if (!beginnings_ && asked_ > connector_.record_count()) gather_beginnings();
}

// Records stand side by side from the first on.
void Data_set::gather_beginnings() {
    // No record has more values than bytes for them, and keys are a part of its fields.
    beginnings_.emplace(connector_.file_size() / sizeof(std::uint64_t) / 2);
    auto offset = static_cast<std::int64_t>(connector_.data_start());
    std::vector<std::uint64_t> values;
    for (std::uint32_t left = connector_.record_count(); left > 0; --left) {
        const auto entry = read(offset);
        offset += static_cast<std::int64_t>(entry->record_size());
        for (std::size_t key = 0; key < keys_.size(); ++key) {
            if (!entry->values_of(keys_[key].field, values)) continue;
            std::uint64_t hash = HASH_OF_NOTHING;
            for (const std::uint64_t value : values) {
                hash = extended_hash(hash, value);
                beginnings_->add(extended_hash(hash, key));
            }
        }
    }
}

void Data_set::find(std::span<const std::uint64_t> values, std::size_t key,
                    std::vector<std::int64_t>& offsets) {
    scl::Scl_status status;
    connector_.find_records(values, key, offsets, status);
    check(status);
}

std::unique_ptr<tla::Tla_data_set_entry_file> Data_set::read(std::int64_t offset) {
    scl::Scl_status status;
    auto entry = connector_.read_entry(offset, status);
    check(status);
    if (entry == nullptr) throw std::bad_alloc();
    return entry;
}

void Data_set::check(const scl::Scl_status& status) const {
    if (status.ok()) return;
    std::u16string text;
    std::string message;
    scl::Scl_status_lookup::to_string(status, text);
    scl::scl_wtos(text, message, true);
    throw File_fault(name_, message);
}

} // namespace scan
