#pragma once

#include "records/values/tla_status_codes.hpp"
#include "scl/status/scl_status.hpp"

#include <cstdint>
#include <string_view>

namespace tla {

// Bounds the work of one lookup by the size of the file. All records together are no longer than
// their file, but a crafted file can have every pair point at the same long record: a million pairs
// at a record of 1 MB would be read as 1 TB. Whoever reads record after record takes each from this
// budget first.
class Tla_read_budget {
public:
    // In bytes. The name must outlive the budget.
    Tla_read_budget(std::uint64_t file_size, std::u16string_view file_name)
        : left_(file_size), file_name_(file_name) {}

    // Pushes TLA_STATUS_NO_DATA_SET, with the file's name, when the records taken so far are longer
    // than the file.
    void take(std::uint64_t record_size, scl::Scl_status& status) {
        if (record_size <= left_) {
            left_ -= record_size;
        } else {
            status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(file_name_));
        }
    }

private:
    std::uint64_t left_;
    std::u16string_view file_name_;
};

} // namespace tla
