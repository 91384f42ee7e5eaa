#pragma once

#include "tla/format/data_set_header.hpp"
#include "tla/read/tla_data_set_connector_base.hpp"

namespace scl {
class Scl_buffered_istream;
class Scl_file_buffer;
} // namespace scl

namespace tla {

class Entry_reader;
struct Key_index;

// Reads a data set file of version 1 or 2. What a file claims costs no more time or memory than its
// own size warrants. Status codes are errors; those marked * carry the file's name:
//   open            TLA_STATUS_NOT_OPEN
//   load            TLA_STATUS_NOT_OPEN, _NO_DATA_SET*, _VERSION*, _FIELD_LIST, _CHECKSUM,
//                   _TOO_MANY_PAIRS; SCL_STATUS_END_OF_DATA for a key table outside the file
//   record_offsets  TLA_STATUS_NOT_OPEN, also when the status has failed before
//   read_entry      TLA_STATUS_NOT_OPEN, and those of an entry
//   find_entries    the same; TLA_STATUS_NO_TOKENS for a value of which nothing is left;
//                   TLA_STATUS_NO_DATA_SET* when the entries read are longer than the file
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
    void load(scl::Scl_status& status, bool accept_any_version) override;
    const std::vector<std::int64_t>& record_offsets(scl::Scl_status& status) override;
    [[nodiscard]] std::unique_ptr<Tla_data_set_entry_file>
    read_entry(std::int64_t record_offset, scl::Scl_status& status) override;

    // As read_entry, without the token values of version 1, which cost more than its texts.
    [[nodiscard]] std::unique_ptr<Tla_data_set_entry_file>
    read_stored_entry(std::int64_t record_offset, scl::Scl_status& status);

    [[nodiscard]] std::uint8_t version() const { return header_.version(); }
    [[nodiscard]] std::uint64_t file_size() const;
    // Of the first record, in bytes from the start of the file.
    [[nodiscard]] std::uint64_t data_start() const { return header_.data_start; }
    [[nodiscard]] std::uint16_t key_count() const { return header_.key_count; }
    // Of the key tables, in file order.
    [[nodiscard]] std::vector<std::u16string> key_names() const;

private:
    [[nodiscard]] bool is_open() const { return opened_ && file_ != nullptr; }
    void check_checksum(scl::Scl_status& status) const;
    void read_key_indexes(scl::Scl_status& status);
    void append_offsets(scl::Scl_buffered_istream& in, std::uint32_t count,
                        scl::Scl_status& status);
    [[nodiscard]] std::uint64_t wanted_hash(const Tla_lookup_value& value,
                                            std::u16string_view key_name,
                                            std::vector<std::uint64_t>& values,
                                            scl::Scl_status& status);

    Tla_data_set_header header_;
    std::u16string data_file_name_;
    bool opened_ = false;
    std::unique_ptr<scl::Scl_file_buffer> file_; // null when closed
    std::unique_ptr<Entry_reader> entries_;      // likewise
    std::uint32_t block_size_ = 0;               // pairs a sample; 0 when not loaded
    std::vector<Key_index> key_indexes_;
    bool loaded_ = false;
    std::vector<std::int64_t> record_offsets_;
};

} // namespace tla
