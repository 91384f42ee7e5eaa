#pragma once

#include "records/values/field_descriptor.hpp"
#include "scl/status/scl_status.hpp"
#include "tla/read/entries/tla_data_set_entry_file.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace tla {

// A value to look up.
struct Tla_lookup_value {
    std::uint64_t hash;   // its key hash, for files of version 1; else not looked at
    const char16_t* text; // ends with U+0000
};

// Reads a data set and finds entries in it. Call set_parameter, open and load, in this order,
// before anything else. Not for use by several threads. Which status codes an operation can leave
// the class that implements it tells.
class Tla_data_set_connector_base {
public:
    Tla_data_set_connector_base() = default;
    Tla_data_set_connector_base(const Tla_data_set_connector_base&) = delete;
    Tla_data_set_connector_base& operator=(const Tla_data_set_connector_base&) = delete;
    virtual ~Tla_data_set_connector_base() = default;

    // In the order of the file's columns; known once loaded.
    [[nodiscard]] virtual const std::vector<Field_descriptor>& field_descriptors() const = 0;

    // Adds to the results the entries whose key field of that name (capitals count) has the value.
    // A name that is no key field's finds nothing and is no failure. docs/reading.md tells what a
    // lookup promises.
    virtual void find_entries(const Tla_lookup_value& value, std::u16string_view key_name,
                              std::vector<std::unique_ptr<Tla_data_set_entry_file>>& results,
                              scl::Scl_status& status) = 0;

    // Does nothing.
    virtual void reserved_operation() = 0;

    // Known name: "DataFileName", in any letter case. Others are ignored.
    virtual void set_parameter(std::string_view name, std::u16string_view value,
                               scl::Scl_status& status) = 0;
    virtual void open(scl::Scl_status& status) = 0;
    // Entries that are still there answer as they did.
    virtual void close() = 0;

    // Checks the data and reads the index; once. Refuses other versions than the latest unless any
    // will do.
    virtual void load(scl::Scl_status& status, bool accept_any_version) = 0;

    // Adds the offsets of all records to the vector it returns, in the order of the first key
    // table; also what there is after a failure.
    virtual const std::vector<std::int64_t>& record_offsets(scl::Scl_status& status) = 0;

    // The entry at an offset; null after a failure.
    [[nodiscard]] virtual std::unique_ptr<Tla_data_set_entry_file>
    read_entry(std::int64_t record_offset, scl::Scl_status& status) = 0;
};

} // namespace tla

#pragma GCC visibility pop
