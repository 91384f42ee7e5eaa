#include "records/values/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/c/open_data_set.hpp"

#include <algorithm>
#include <span>

using tla::c::Caller_fault;
using tla::c::guarded;
using tla::c::Open_data_set;
using tla::c::view_of;

namespace {

// Adds the offsets of the records. A value of which nothing is left is in no record, rather than a
// fault of the caller.
void find(dsmake_data_set& set, std::size_t key, std::string_view value, scl::Scl_status& status) {
    std::u16string text;
    scl::scl_stow(value, text);
    set.connector->find_records(text, key, set.offsets, status);
    if (status == tla::TLA_STATUS_NO_TOKENS) status.clear();
}

// A number that is too large is the caller's fault, and told as that.
void expect_key(const dsmake_data_set& set, std::uint32_t key) {
    if (key < set.open->keys().size()) return;
    throw Caller_fault(DSMAKE_NO_SUCH_KEY, "no such key: number " + std::to_string(key));
}

// There are few keys, so each is compared.
std::size_t key_of(const dsmake_data_set& set, std::string_view name) {
    const auto& keys = set.open->keys();
    const auto key = std::ranges::find(keys, name, &Open_data_set::Key::name);
    if (key != keys.end()) return static_cast<std::size_t>(key - keys.begin());
    throw Caller_fault(DSMAKE_NO_SUCH_KEY, "no such key: " + std::string(name));
}

// Does a lookup, which leaves the offsets, and returns how many there are.
template <typename Work>
int64_t looked_up(dsmake_data_set* set, const Work& work) noexcept {
    if (set != nullptr) set->offsets.clear();
    return guarded(set, work) ? static_cast<int64_t>(set->offsets.size()) : -1;
}

} // namespace

int64_t dsmake_find(dsmake_data_set* set, const char* key, const char* value) {
    return looked_up(set, [&](scl::Scl_status& status) {
        find(*set, key_of(*set, view_of(key)), view_of(value), status);
    });
}

int64_t dsmake_find_text(dsmake_data_set* set, uint32_t key, const char* value, size_t size) {
    return looked_up(set, [&](scl::Scl_status& status) {
        expect_key(*set, key);
        find(*set, key, view_of(value, size), status);
    });
}

// The offsets of all values stand one after another; the counts tell which are whose.
int64_t dsmake_find_many(dsmake_data_set* set, uint32_t key, const dsmake_text* values, size_t size,
                         uint64_t* counts) {
    return looked_up(set, [&](scl::Scl_status& status) {
        expect_key(*set, key);
        if (size != 0 && (values == nullptr || counts == nullptr)) {
            throw Caller_fault(DSMAKE_BAD_ARGUMENT, "no values, or no room for their counts");
        }
        for (std::size_t i = 0; i < size && !status.has_failed(); ++i) {
            const std::size_t before = set->offsets.size();
            find(*set, key, view_of(values[i].bytes, values[i].size), status);
            counts[i] = set->offsets.size() - before;
        }
    });
}

const int64_t* dsmake_offsets(const dsmake_data_set* set) {
    return set != nullptr ? set->offsets.data() : nullptr;
}
