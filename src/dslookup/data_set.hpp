#pragma once

#include "tla/read/tla_data_set_connector_file.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dslookup {

// A data set file that is open for lookups. Faults are thrown (std::runtime_error), with a message
// that begins with the file's name.
class Data_set {
public:
    explicit Data_set(std::string_view name);

    // As it is shown.
    [[nodiscard]] const std::string& name() const { return shown_name_; }
    [[nodiscard]] std::uint32_t record_count() const { return connector_.record_count(); }
    [[nodiscard]] const std::vector<tla::Field_descriptor>& fields() const {
        return connector_.field_descriptors();
    }
    [[nodiscard]] bool is_key(std::size_t field) const;

    // Goes through all records, to see that each ends where it should.
    void check_records();

    // The key's index. The fault of a name that is none lists those there are.
    [[nodiscard]] std::size_t key(std::string_view name) const;
    // The offsets of the records that have the value there, ascending. White space around the
    // value must be off; of a value of which nothing is left there is no record.
    [[nodiscard]] const std::vector<std::int64_t>& find(std::u16string_view value, std::size_t key);

private:
    [[noreturn]] void fail(std::string_view what) const;
    void check(const scl::Scl_status& status) const;

    std::string shown_name_;
    tla::Tla_data_set_connector_file connector_;
    std::vector<std::u16string> keys_;
    std::vector<bool> is_key_; // each field; the last, whether a key is no field
    std::vector<std::int64_t> offsets_;
};

} // namespace dslookup
