#pragma once

#include "tla/format/data_set_header.hpp"
#include "tla/read/tla_data_set_connector_base.hpp"

namespace tla {

struct Key_index;

// Reads a data set file of version 1 or 2. What a file claims costs no more time or memory than its
// own size warrants. Status codes are errors; those marked * carry the file's name, + its name and
// the system's reason:
//   set_parameter   none
//   open            TLA_STATUS_NOT_OPEN
//   load            TLA_STATUS_NOT_OPEN, _NO_DATA_SET*, _VERSION*, _FIELD_LIST, _CHECKSUM,
//                   _TOO_MANY_PAIRS; SCL_STATUS_END_OF_DATA for a key table that begins outside the
//                   file; SCL_STATUS_READ_FAILED+
//   record_offsets  TLA_STATUS_NOT_OPEN, also when the status has failed before;
//                   SCL_STATUS_READ_FAILED+
//   read_entry      TLA_STATUS_NOT_OPEN, and those of an entry
//   find_entries    the same; TLA_STATUS_NO_TOKENS for a value of which nothing is left;
//                   TLA_STATUS_NO_DATA_SET* when the entries read are longer than the file
// SCL_STATUS_READ_FAILED also tells that the file has become shorter since it was opened.
//
// Exceptions: find_entries throws std::runtime_error for a value, or a text of version 1, of more
// than 15,000,000 tokens; each operation that has to take memory throws std::bad_alloc when there
// is none, but for load, which reports TLA_STATUS_NO_DATA_SET* when the index takes it all.
//
// Entries use the connector's fields and its file: it must outlive them, open.
class Tla_data_set_connector_file final : public Tla_data_set_connector_base {
public:
    Tla_data_set_connector_file();
    ~Tla_data_set_connector_file() override;

    [[nodiscard]] const std::vector<Field_descriptor>& field_descriptors() const override {
        return header_.fields;
    }
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

    // What the file says of itself; known once loaded.
    [[nodiscard]] std::uint8_t version() const { return header_.version(); }
    // In bytes, as it was opened; 0 when closed.
    [[nodiscard]] std::uint64_t file_size() const;
    // Of the first record, in bytes from the start of the file.
    [[nodiscard]] std::uint64_t data_start() const { return header_.data_start; }
    [[nodiscard]] std::uint16_t key_count() const { return header_.key_count; }
    // What the header claims: the first key table may have fewer pairs.
    [[nodiscard]] std::uint32_t record_count() const { return header_.record_count; }
    // Of the key tables, in file order.
    [[nodiscard]] std::vector<std::u16string> key_names() const;

private:
    struct Source;

    [[nodiscard]] bool is_open() const { return source_ != nullptr; }
    void check_checksum(scl::Scl_status& status) const;
    void read_key_indexes(scl::Scl_status& status);

    Tla_data_set_header header_;
    std::u16string data_file_name_;
    std::unique_ptr<Source> source_; // null when closed
    std::uint32_t block_size_ = 0;   // pairs a sample; 0 when not loaded
    std::vector<Key_index> key_indexes_;
    bool loaded_ = false;
    std::vector<std::int64_t> record_offsets_;
};

} // namespace tla
