#include "tla/c/dsmake.h"

#include "records/values/tla_status_codes.hpp"
#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"

#include <algorithm>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// Not in a namespace: callers in C know it by this name.
struct dsmake_data_set {
    std::string path;
    tla::Tla_data_set_connector_file connector;
    std::vector<std::u16string> keys;
    std::vector<std::int64_t> offsets;
    std::string message;
    const char* last_message = ""; // `message`, or one that needs no memory
};

namespace {

constexpr const char* NO_MEMORY = "There is not enough memory.";

std::string_view view_of(const char* text) {
    return text != nullptr ? text : "";
}

std::u16string wide(std::string_view narrow) {
    std::u16string text;
    scl::scl_stow(narrow, text);
    return text;
}

void tell(dsmake_data_set& set, std::string_view fault) {
    set.message.assign(set.path).append(": ").append(fault);
    set.last_message = set.message.c_str();
}

void tell(dsmake_data_set& set, const scl::Scl_status& status) {
    std::u16string text;
    scl::Scl_status_lookup::to_string(status, text);
    std::string narrow;
    scl::scl_wtos(text, narrow, true);
    tell(set, narrow);
}

// Does the work, and keeps what it says of a failure; false then. Nothing is thrown: what calls
// may not know of exceptions.
template <typename Work>
bool guarded(dsmake_data_set& set, const Work& work) noexcept {
    set.last_message = NO_MEMORY; // unless there is some to say more
    try {
        try {
            scl::Scl_status status;
            work(status);
            if (!status.has_failed()) {
                set.last_message = "";
                return true;
            }
            tell(set, status);
        } catch (const std::bad_alloc&) {
            return false;
        } catch (const std::exception& fault) {
            tell(set, fault.what());
        }
    } catch (...) { // there was no memory for a message
    }
    return false;
}

void open(dsmake_data_set& set, std::string_view path, unsigned flags, scl::Scl_status& status) {
    set.path = path;
    if ((flags & DSMAKE_HOLD_IN_MEMORY) != 0) set.connector.hold_in_memory();
    set.connector.set_parameter("DataFileName", wide(path), status);
    set.connector.open(status);
    if (!status.has_failed()) set.connector.load(status, false);
    if (!status.has_failed()) set.keys = set.connector.key_names();
}

// A value of which nothing is left is in no record, rather than a fault of the caller.
void find(dsmake_data_set& set, std::string_view key, std::string_view value,
          scl::Scl_status& status) {
    const auto place = std::ranges::find(set.keys, wide(key));
    if (place == set.keys.end()) throw std::invalid_argument("no such key: " + std::string(key));
    const auto index = static_cast<std::size_t>(place - set.keys.begin());
    set.connector.find_records(wide(value), index, set.offsets, status);
    if (status == tla::TLA_STATUS_NO_TOKENS) status.clear();
}

} // namespace

dsmake_data_set* dsmake_open(const char* path, unsigned flags) {
    try {
        auto set = std::make_unique<dsmake_data_set>();
        (void)guarded(*set, [&](auto& status) { open(*set, view_of(path), flags, status); });
        return set.release();
    } catch (...) {
        return nullptr;
    }
}

int64_t dsmake_find(dsmake_data_set* set, const char* key, const char* value) {
    if (set == nullptr) return -1;
    set->offsets.clear();
    const bool done =
        guarded(*set, [&](auto& status) { find(*set, view_of(key), view_of(value), status); });
    return done ? static_cast<int64_t>(set->offsets.size()) : -1;
}

const int64_t* dsmake_offsets(const dsmake_data_set* set) {
    return set != nullptr ? set->offsets.data() : nullptr;
}

const char* dsmake_message(const dsmake_data_set* set) {
    return set != nullptr ? set->last_message : NO_MEMORY;
}

void dsmake_close(dsmake_data_set* set) {
    delete set; // NOLINT(cppcoreguidelines-owning-memory): the caller in C owned it
}
