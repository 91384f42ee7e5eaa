#pragma once

#include "tla/c/report.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"
#include "tla/scan/tla_scan_index.hpp"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tla::c {

// A data set that is open, which all its handles share. Nothing changes in it but that the index
// for scans is made when it is first asked for.
class Open_data_set {
public:
    // To be used when the status has not failed.
    Open_data_set(std::string_view path, unsigned flags, scl::Scl_status& status);

    struct Field {
        std::string name;
        std::string_view type; // a constant of the program, which ends with a zero byte
    };
    struct Key {
        std::string name;
        std::optional<std::size_t> field;
    };
    [[nodiscard]] const std::vector<Field>& fields() const { return fields_; }
    [[nodiscard]] const std::vector<Key>& keys() const { return keys_; }

    // Nothing is looked up with it, so that it can be shared while others are in use.
    [[nodiscard]] const Tla_data_set_connector_file& connector() const { return connector_; }
    // Null after a failure, which the status tells.
    [[nodiscard]] const Tla_scan_index* scan_index(scl::Scl_status& status) const;

private:
    [[nodiscard]] std::unique_ptr<const Tla_scan_index>
    make_scan_index(scl::Scl_status& status) const;

    std::u16string path_;
    Tla_data_set_connector_file connector_;
    std::vector<Field> fields_;
    std::vector<Key> keys_;
    mutable std::mutex index_making_; // several threads may ask for it at first
    mutable std::unique_ptr<const Tla_scan_index> scan_index_;
};

} // namespace tla::c

// A handle. Not in a namespace: callers in C know it by this name.
struct dsmake_data_set {
    explicit dsmake_data_set(std::string_view path) : report(path) {}

    tla::c::Report report;
    std::shared_ptr<const tla::c::Open_data_set> open; // null when it could not be opened
    // The rest is this handle's own.
    std::unique_ptr<tla::Tla_data_set_connector_file> connector;
    std::vector<std::int64_t> offsets;
    std::unique_ptr<tla::Tla_data_set_entry_file> record; // read last
    std::vector<std::uint64_t> values;
    std::int64_t next_record = 0;
    std::uint32_t records_left = 0;
};

namespace tla::c {

// Does the work on a handle that is open. False after a failure; one of the opening stays as it is.
template <typename Work>
bool guarded(dsmake_data_set* set, const Work& work) noexcept {
    return set != nullptr && set->open != nullptr && set->report.guard(work);
}

} // namespace tla::c
