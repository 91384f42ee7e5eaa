#include "data_set.hpp"

#include "records/values/tla_status_codes.hpp"
#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"

#include <algorithm>
#include <stdexcept>

namespace dslookup {

// Behind a table from which equal records were left out, the file's further key names come out
// wrong. Such a file is refused here rather than answered from in part.
Data_set::Data_set(std::string_view name) : shown_name_(scl::scl_shown(name)) {
    std::u16string wide_name;
    scl::scl_stow(name, wide_name);
    scl::Scl_status status;
    connector_.set_parameter("DataFileName", wide_name, status);
    connector_.open(status);
    if (!status.has_failed()) connector_.load(status, false);
    check(status);
    keys_ = connector_.key_names();
    is_key_.resize(fields().size() + 1);
    for (const std::size_t field : connector_.key_fields()) {
        is_key_[field] = true;
    }
    // field_of() gives the number of fields for a key name that is none: the last element.
    const bool all_there = !is_key_.back();
    if (!all_there || keys_.size() != connector_.key_count()) {
        fail("not all of its keys can be read. Remove lines that are equal in every field from its "
             "input, and build it again.");
    }
}

bool Data_set::is_key(std::size_t field) const {
    return is_key_[field];
}

// The largest count of any field takes a pass over all records, and reading them tells of each that
// does not end well. The count itself is of no use here.
void Data_set::check_records() {
    scl::Scl_status status;
    static_cast<void>(connector_.largest_token_count(0, status));
    check(status);
}

std::size_t Data_set::key(std::string_view name) const {
    std::u16string wanted;
    scl::scl_stow(name, wanted);
    const auto found = std::ranges::find(keys_, wanted);
    if (found != keys_.end()) return static_cast<std::size_t>(found - keys_.begin());
    std::string names;
    for (const std::u16string& key : keys_) {
        names += names.empty() ? "" : ", ";
        scl::scl_wtos(scl::scl_shown(key), names, false);
    }
    fail("no such key: " + scl::scl_shown(name) +
         (names.empty() ? "; it has none" : "; its keys: " + names));
}

const std::vector<std::int64_t>& Data_set::find(std::u16string_view value, std::size_t key) {
    offsets_.clear();
    scl::Scl_status status;
    connector_.find_records(value, key, offsets_, status);
    // A value without words is no fault of a lookup: no record has it.
    if (status != tla::TLA_STATUS_NO_TOKENS) check(status);
    return offsets_;
}

void Data_set::fail(std::string_view what) const {
    throw std::runtime_error(shown_name_ + ": " + std::string(what));
}

void Data_set::check(const scl::Scl_status& status) const {
    if (status.ok()) return;
    std::u16string text;
    scl::Scl_status_lookup::to_string(status, text);
    std::string message;
    scl::scl_wtos(text, message, true);
    fail(message);
}

} // namespace dslookup
