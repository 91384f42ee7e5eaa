#pragma once

#include "sequences.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace scan {

// A data set file, held in memory, and what a scan asks of it. Every fault is thrown as a
// File_fault with the file's name.
class Data_set {
public:
    struct Key {
        std::size_t field;   // its place among the fields
        std::size_t longest; // the most token values that a record has in it
    };

    explicit Data_set(const std::string& name);

    [[nodiscard]] const std::vector<tla::Field_descriptor>& fields() const {
        return connector_.field_descriptors();
    }
    // In the file's order.
    [[nodiscard]] const std::vector<Key>& keys() const { return keys_; }

    // To be called before about so many sequences are asked for. Looking up one after the other is
    // best for few; for many, all records are gone through once, for begins_so() to be sharp.
    void expect(std::uint64_t sequences);
    // Whether a value of the key may begin with the sequence of that hash; always true before the
    // records were gone through. Who has many hashes at hand prepares them first: the answers lie
    // all over a large table.
    [[nodiscard]] bool begins_so(std::size_t key, std::uint64_t hash) const {
        return !beginnings_ || beginnings_->may_hold(extended_hash(hash, key));
    }
    void prepare(std::size_t key, std::uint64_t hash) const {
        if (beginnings_) beginnings_->prepare(extended_hash(hash, key));
    }

    // Adds the offsets of all records that have the values in a key.
    void find(std::span<const std::uint64_t> values, std::size_t key,
              std::vector<std::int64_t>& offsets);
    // The record at an offset.
    [[nodiscard]] std::unique_ptr<tla::Tla_data_set_entry_file> read(std::int64_t offset);

private:
    void load();
    void read_keys();
    void gather_beginnings();
    void check(const scl::Scl_status& status) const;

    std::string name_;
    tla::Tla_data_set_connector_file connector_;
    std::vector<Key> keys_;
    std::uint64_t asked_ = 0;
    std::optional<Hash_filter> beginnings_; // of the keys' values, each with its key
};

} // namespace scan
