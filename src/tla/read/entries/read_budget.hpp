#pragma once

#include "records/values/tla_status_codes.hpp"
#include "scl/status/scl_status.hpp"

#include <cstdint>
#include <string_view>

namespace tla {

// Records that stand side by side are together no longer than their file. A damaged file may have
// its pairs point at the same long record over and over; who reads record after record asks here
// whether to go on, so that the work stays within the file's own size.
class Tla_read_budget {
public:
    // The name must outlive the budget.
    Tla_read_budget(std::uint64_t file_size, std::u16string_view file_name)
        : left_(file_size), file_name_(file_name) {}

    // Pushes TLA_STATUS_NO_DATA_SET, with the file's name, when the records so far are longer than
    // the file.
    void take(std::uint64_t record_size, scl::Scl_status& status) {
        if (record_size <= left_) {
            left_ -= record_size;
        } else {
            status.push(TLA_STATUS_NO_DATA_SET, scl::Scl_wstring_status_arg(file_name_));
        }
    }

private:
    std::uint64_t left_; // bytes
    std::u16string_view file_name_;
};

} // namespace tla
