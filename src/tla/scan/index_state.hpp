#pragma once

#include "scl/io/scl_buffer.hpp"
#include "tla/format/data_set_header.hpp"
#include "tla/scan/data_set_records.hpp"
#include "tla/scan/scan_tables.hpp"
#include "tla/scan/tla_scan_index.hpp"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace tla {

// What an index knows of its file. Nothing changes once it is opened, but that the tables are made,
// once.
class Index_state {
public:
    std::unique_ptr<const scl::Scl_buffer> contents; // null where the bytes are a caller's
    std::span<const std::byte> file;
    Tla_data_set_header header;
    std::vector<Field_descriptor> fields;
    std::vector<std::size_t> keys;
    Key_order key_order; // of the fields
    Scan_hashes hashes;
    std::optional<Data_set_records> records;

    // Checks the records and what the fields are; after keys.
    void take_records(scl::Scl_status& status);
    // The most bytes that tables of pairs may take.
    [[nodiscard]] std::uint64_t room_for_pairs() const;
    // Of all records; made when first asked for, by whichever thread comes first.
    [[nodiscard]] const Scan_tables& tables() const;
    // Null when they are not made yet.
    [[nodiscard]] const Scan_tables* ready_tables() const {
        return ready_tables_.load(std::memory_order_acquire);
    }

    // Whether one more short text should do without them.
    [[nodiscard]] bool does_without_tables() const {
        constexpr unsigned FEW_TEXTS = 2;
        return ready_tables() == nullptr &&
               short_texts_.fetch_add(1, std::memory_order_relaxed) < FEW_TEXTS;
    }

private:
    mutable std::once_flag tables_flag_;
    mutable std::unique_ptr<const Scan_tables> tables_;
    mutable std::atomic<const Scan_tables*> ready_tables_ = nullptr;
    mutable std::atomic<unsigned> short_texts_ = 0;
};

// Lets the room's own code see an index's state.
class Index_access {
public:
    [[nodiscard]] static const Index_state& state_of(const Tla_scan_index& index) {
        return *index.state_;
    }
};

} // namespace tla
