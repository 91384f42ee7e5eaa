#pragma once

#include "records/values/tla_value_tokens.hpp"
#include "tla/format/data_set_header.hpp"
#include "tla/read/entries/entry_reader.hpp"
#include "tla/read/keys/key_index.hpp"
#include "tla/read/keys/pair_reader.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tla {

// An open file and its readers, which reuse their buffers from one operation to the next.
struct Tla_data_set_connector_file::Source {
    Source(std::shared_ptr<const scl::Scl_buffer> opened,
           std::shared_ptr<const Entry_fields> fields, const Tla_data_set_header& header)
        : shared(std::make_shared<const Entry_source>(std::move(opened), std::move(fields))),
          pairs(*shared->file),
          entries(shared, header) {}

    [[nodiscard]] const scl::Scl_buffer& file() const { return *shared->file; }

    std::shared_ptr<const Entry_source> shared;
    Pair_reader pairs;
    Entry_reader entries;
    Tla_value_tokeniser tokeniser; // of looked-up values
};

// What a connector knows of its file.
struct Tla_data_set_connector_file::State {
    Tla_data_set_header header;
    std::vector<Field_descriptor> fields;
    std::shared_ptr<Entry_fields> entry_fields; // `fields`, for entries; null when closed
    std::u16string data_file_name;
    std::unique_ptr<Source> source; // null when closed
    std::uint32_t block_size = 0;   // of all key tables, in pairs; 0 when not loaded
    std::vector<Key_index> key_indexes;
    std::vector<std::uint16_t> largest_counts; // of tokens, by field; empty until asked for
    bool wants_memory = false;                 // load() is to read the whole file into memory
    bool loaded = false;
    std::vector<std::int64_t> record_offsets;
};

} // namespace tla
