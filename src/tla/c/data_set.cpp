#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/c/open_data_set.hpp"

#include <algorithm>
#include <span>

namespace tla::c {

namespace {

// Names go to C as UTF-8, and stay as long as the data set is open.
std::string narrow(std::u16string_view wide) {
    std::string text;
    scl::scl_wtos(wide, text, true);
    return text;
}

} // namespace

// Flags that are unknown are refused: a later version may mean something by them.
Open_data_set::Open_data_set(std::string_view path, unsigned flags, scl::Scl_status& status) {
    if ((flags & ~unsigned{DSMAKE_HOLD_IN_MEMORY}) != 0) {
        throw Caller_fault(DSMAKE_BAD_ARGUMENT, "unknown flags: " + std::to_string(flags));
    }
    scl::scl_stow(path, path_);
    if ((flags & DSMAKE_HOLD_IN_MEMORY) != 0) connector_.hold_in_memory();
    connector_.set_parameter("DataFileName", path_, status);
    connector_.open(status);
    if (!status.has_failed()) connector_.load(status, false);
    if (status.has_failed()) return;
    const std::vector<Field_descriptor>& fields = connector_.field_descriptors();
    for (const Field_descriptor& field : fields) {
        const std::string_view type = tla_formatter_name_from_type_id(field.type);
        fields_.push_back({narrow(field.name), type.empty() ? "" : type});
    }
    for (const std::u16string& key : connector_.key_names()) {
        const auto field = std::ranges::find(fields, key, &Field_descriptor::name);
        const auto place = static_cast<std::size_t>(field - fields.begin());
        keys_.push_back({narrow(key), field != fields.end() ? std::optional(place) : std::nullopt});
    }
}

// Made when the first scan is opened: who only looks records up does not pay for it. Threads that
// share the data set wait for one another here.
const Tla_scan_index* Open_data_set::scan_index(scl::Scl_status& status) const {
    const std::scoped_lock lock(index_making_);
    if (scan_index_ == nullptr) scan_index_ = make_scan_index(status);
    return scan_index_.get();
}

// A file that is in memory already is not read again.
std::unique_ptr<const Tla_scan_index>
Open_data_set::make_scan_index(scl::Scl_status& status) const {
    const std::span<const std::byte> bytes = connector_.bytes_in_memory();
    return bytes.empty() ? Tla_scan_index::open(path_, {}, status)
                         : Tla_scan_index::over(bytes, path_, {}, status);
}

} // namespace tla::c

using tla::c::Open_data_set;

const char* dsmake_version(void) {
    return DSMAKE_VERSION;
}

// A failure gives a data set that only tells its message. NULL is left for when even that has no
// memory.
dsmake_data_set* dsmake_open(const char* path, unsigned flags) {
    try {
        auto set = std::make_unique<dsmake_data_set>(tla::c::view_of(path));
        const bool is_open = set->report.guard([&](scl::Scl_status& status) {
            auto open = std::make_shared<const Open_data_set>(tla::c::view_of(path), flags, status);
            if (status.has_failed()) return;
            set->connector = open->connector().share();
            set->open = std::move(open);
        });
        // A handle is returned even then, as it has the message.
        if (!is_open) set->open.reset();
        return set.release();
    } catch (...) {
        return nullptr;
    }
}

// One that could not be opened shares its message.
dsmake_data_set* dsmake_share(const dsmake_data_set* set) {
    if (set == nullptr) return nullptr;
    try {
        auto other = std::make_unique<dsmake_data_set>(set->report.path());
        if (set->open == nullptr) {
            other->report.copy(set->report);
        } else {
            other->connector = set->open->connector().share();
            other->open = set->open;
        }
        return other.release();
    } catch (...) {
        return nullptr;
    }
}

void dsmake_close(dsmake_data_set* set) {
    delete set; // NOLINT(cppcoreguidelines-owning-memory): the caller in C owned it
}

// NULL stands for what dsmake_open() returns without memory.
uint32_t dsmake_code(const dsmake_data_set* set) {
    return set != nullptr ? set->report.code() : DSMAKE_NO_MEMORY;
}

const char* dsmake_message(const dsmake_data_set* set) {
    return set != nullptr ? set->report.message() : tla::c::Report::NO_MEMORY;
}

namespace {

// Of what is not open there are none, so that callers need not ask first.
std::span<const Open_data_set::Field> fields_of(const dsmake_data_set* set) {
    if (set == nullptr || set->open == nullptr) return {};
    return set->open->fields();
}

std::span<const Open_data_set::Key> keys_of(const dsmake_data_set* set) {
    if (set == nullptr || set->open == nullptr) return {};
    return set->open->keys();
}

} // namespace

uint32_t dsmake_field_count(const dsmake_data_set* set) {
    return static_cast<uint32_t>(fields_of(set).size());
}

// Never NULL: in C that would end the program that prints it.
const char* dsmake_field_name(const dsmake_data_set* set, uint32_t field) {
    return field < fields_of(set).size() ? fields_of(set)[field].name.c_str() : "";
}

const char* dsmake_field_type(const dsmake_data_set* set, uint32_t field) {
    return field < fields_of(set).size() ? fields_of(set)[field].type.data() : "";
}

uint32_t dsmake_key_count(const dsmake_data_set* set) {
    return static_cast<uint32_t>(keys_of(set).size());
}

const char* dsmake_key_name(const dsmake_data_set* set, uint32_t key) {
    return key < keys_of(set).size() ? keys_of(set)[key].name.c_str() : "";
}

int64_t dsmake_key_field(const dsmake_data_set* set, uint32_t key) {
    if (key >= keys_of(set).size()) return -1;
    const auto field = keys_of(set)[key].field;
    return field ? static_cast<int64_t>(*field) : -1;
}

uint64_t dsmake_record_count(const dsmake_data_set* set) {
    return set != nullptr && set->open != nullptr ? set->open->connector().record_count() : 0;
}
