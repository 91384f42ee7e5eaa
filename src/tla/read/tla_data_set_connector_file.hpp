#pragma once

#include "tla/read/tla_data_set_connector_base.hpp"

#include <span>

#pragma GCC visibility push(default) // installed

namespace scl {
class Scl_buffer;
} // namespace scl

namespace tla {

// Reads a data set file of version 1 or 2. Time and memory stay in proportion to the file's size,
// whatever it claims. Status codes are errors; those marked * carry the file's name, + its name and
// the system's reason:
//   set_parameter   none
//   open            TLA_STATUS_NOT_OPEN
//   load            TLA_STATUS_NOT_OPEN, _NO_DATA_SET*, _VERSION*, _FIELD_LIST, _CHECKSUM,
//                   _TOO_MANY_PAIRS; SCL_STATUS_END_OF_DATA for a key table that begins outside the
//                   file; SCL_STATUS_READ_FAILED+; SCL_STATUS_NO_MEMORY when there is not enough
//                   for the fields, the index or a file that is to be in memory
//   record_offsets  TLA_STATUS_NOT_OPEN, also when the status has failed before;
//                   SCL_STATUS_READ_FAILED+
//   read_entry      TLA_STATUS_NOT_OPEN, those of an entry, SCL_STATUS_NO_MEMORY
//   find_entries    TLA_STATUS_NOT_OPEN, and those of an entry; TLA_STATUS_NO_TOKENS for a value
//                   of which nothing is left; TLA_STATUS_NO_DATA_SET* when the entries read are
//                   longer than the file
//   find_records, largest_token_count
//                   as find_entries; TLA_STATUS_VERSION* for a file of version 1;
//                   TLA_STATUS_NO_DATA_SET* when the records read are longer than the file
// SCL_STATUS_READ_FAILED also tells that the file has become shorter since it was opened.
//
// Exceptions: find_entries and find_records throw std::runtime_error for a value, or a text of
// version 1, of more than 15,000,000 tokens. Each operation that has to take memory throws
// std::bad_alloc when there is none, but for load and read_entry, which report
// SCL_STATUS_NO_MEMORY. Nothing that was found is left out for lack of memory.
//
// Entries share the connector's fields and its file, and answer as they did whatever it closes,
// opens or loads next.
//
// Opening and loading are in tla_data_set_connector_file.cpp, all else is in
// tla_data_set_connector_lookups.cpp.
class Tla_data_set_connector_file final : public Tla_data_set_connector_base {
public:
    Tla_data_set_connector_file();
    ~Tla_data_set_connector_file() override;

    [[nodiscard]] const std::vector<Field_descriptor>& field_descriptors() const override;
    void find_entries(const Tla_lookup_value& value, std::u16string_view key_name,
                      std::vector<std::unique_ptr<Tla_data_set_entry_file>>& results,
                      scl::Scl_status& status) override;
    void reserved_operation() override {}
    void set_parameter(std::string_view name, std::u16string_view value,
                       scl::Scl_status& status) override;
    void open(scl::Scl_status& status) override;
    // Forgets the file's name, its fields and counts, but not the key indexes and record offsets: a
    // file that is loaded afterwards adds to them. Use a connector of its own for each file.
    void close() override;
    // To be called once. After a failure, what was read stays: another call adds the fields and the
    // key indexes to it once more. Begin again with a new connector.
    void load(scl::Scl_status& status, bool accept_any_version) override;
    const std::vector<std::int64_t>& record_offsets(scl::Scl_status& status) override;
    [[nodiscard]] std::unique_ptr<Tla_data_set_entry_file>
    read_entry(std::int64_t record_offset, scl::Scl_status& status) override;

    // Has `load` read the whole file into memory. Lookups then make no system call, and the file
    // may be changed or removed. To be called before load; close() takes it back. docs/reading.md
    // says when it pays.
    void hold_in_memory();

    // Another connector on the same open file, which is in memory once for both: for another
    // thread, or for lookups in between. What this one was asked before is not known to it. Null
    // when nothing is loaded. Any number of threads may call it at a time, as long as nothing else
    // is done with this connector.
    [[nodiscard]] std::unique_ptr<Tla_data_set_connector_file> share() const;
    // The file's bytes where it was loaded into memory, until close(); else empty.
    [[nodiscard]] std::span<const std::byte> bytes_in_memory() const;

    // Adds the offsets of every record whose key field has these token values and that has a pair
    // in the key table, ascending and each once; unlike find_entries also those on both sides of
    // a block's border and among equal key hashes. `key` is an index into key_names(); past its
    // end nothing is found. For a file of version 2.
    void find_records(std::span<const std::uint64_t> values, std::size_t key,
                      std::vector<std::int64_t>& record_offsets, scl::Scl_status& status);
    // The same for the token values of a text, which is brought into the form of the key's type,
    // but not trimmed. Pushes TLA_STATUS_NO_TOKENS for one of which nothing is left.
    void find_records(std::u16string_view text, std::size_t key,
                      std::vector<std::int64_t>& record_offsets, scl::Scl_status& status);

    // The most token values that any record has in a key field; `key` as above. Counted when first
    // asked, for all keys, in one pass over the records. For a file of version 2; 0 after a
    // failure.
    [[nodiscard]] std::uint32_t largest_token_count(std::size_t key, scl::Scl_status& status);

    // From the file's header; known once loaded.
    [[nodiscard]] std::uint8_t version() const;
    // In bytes, as it was opened; 0 when closed.
    [[nodiscard]] std::uint64_t file_size() const;
    // Of the first record, in bytes from the start of the file.
    [[nodiscard]] std::uint64_t data_start() const;
    [[nodiscard]] std::uint16_t key_count() const;
    // What the header claims: a key table may have fewer pairs.
    [[nodiscard]] std::uint32_t record_count() const;
    // The names of the key tables, in file order.
    [[nodiscard]] std::vector<std::u16string> key_names() const;
    // The field of each key table: the first of its name, as an index into field_descriptors(), or
    // their number when there is none, as in a file whose tables cannot be read rightly. Found by a
    // search: a file may have tens of thousands of both.
    [[nodiscard]] std::vector<std::size_t> key_fields() const;

private:
    struct Source;
    struct State;

    [[nodiscard]] bool is_open() const;
    void attach(std::shared_ptr<const scl::Scl_buffer> file);
    void release_entries();
    void load_open_file(scl::Scl_status& status, bool accept_any_version);
    void read_body(scl::Scl_status& status);
    [[nodiscard]] bool has_token_values(scl::Scl_status& status) const;
    [[nodiscard]] std::vector<std::uint64_t> token_values_of(std::u16string_view text,
                                                             std::u16string_view key_name,
                                                             scl::Scl_status& status);
    [[nodiscard]] std::size_t field_of(std::u16string_view name) const;
    void read_key_indexes(scl::Scl_status& status);

    std::unique_ptr<State> state_;
};

} // namespace tla

#pragma GCC visibility pop
