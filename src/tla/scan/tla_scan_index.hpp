#pragma once

#include "records/values/field_descriptor.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace scl {
class Scl_status;
} // namespace scl

#pragma GCC visibility push(default) // installed

namespace tla {

class Index_access;
class Index_state;

// A data set file of version 2 that texts are scanned for (Tla_text_scan). It does not change once
// it is made, so any number of threads may scan with it at a time, each with scans of its own.
//
// Making one reads the file and its key fields' names. The tables over its records are made when
// the first text needs them, once, by whichever thread comes first: a single short text needs none.
// They are made of the records themselves, so that it makes no difference which records have pairs
// in the key tables, or in what order. They take up to half of the file's size and 64 MiB.
class Tla_scan_index {
public:
    // Reads, checks and holds a file. The key fields are those with a key table in it, or those of
    // the names, in their order, when there are any; any field can be named. Null after a failure,
    // which leaves one of
    //   TLA_STATUS_NOT_OPEN     there is no such file, or it cannot be opened
    //   TLA_STATUS_NO_DATA_SET  with the file's name: another kind of file; records or key tables
    //                           that reach beyond it, or key tables whose fields it does not have
    //   TLA_STATUS_VERSION      with the file's name: not of version 2
    //   TLA_STATUS_FIELD_LIST, TLA_STATUS_CHECKSUM
    //   TLA_STATUS_KEY_NAME     with the name that no field of the file has
    //   SCL_STATUS_READ_FAILED, SCL_STATUS_NO_MEMORY
    // Memory exhausted elsewhere is thrown (std::bad_alloc).
    [[nodiscard]] static std::unique_ptr<const Tla_scan_index>
    open(std::u16string_view file_name, std::span<const std::u16string> key_names,
         scl::Scl_status& status);

    // The same for a file's bytes that the caller holds, for as long as the index is used. The
    // checksum is the caller's business; the name is for messages.
    [[nodiscard]] static std::unique_ptr<const Tla_scan_index>
    over(std::span<const std::byte> file, std::u16string_view file_name,
         std::span<const std::u16string> key_names, scl::Scl_status& status);

    ~Tla_scan_index();
    Tla_scan_index(const Tla_scan_index&) = delete;
    Tla_scan_index& operator=(const Tla_scan_index&) = delete;

    [[nodiscard]] const std::vector<Field_descriptor>& fields() const;
    // Places among the fields, in the order of the keys.
    [[nodiscard]] std::span<const std::size_t> keys() const;
    [[nodiscard]] std::uint64_t record_count() const;

    // Makes the tables now, if they are not made yet: for callers that want to know when. Throws
    // std::bad_alloc; then they can be made later.
    void prepare() const;

private:
    friend class Index_access;
    explicit Tla_scan_index(std::unique_ptr<Index_state> state);

    std::unique_ptr<Index_state> state_;
};

} // namespace tla

#pragma GCC visibility pop
