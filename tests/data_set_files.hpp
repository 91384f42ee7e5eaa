#pragma once

#include "program.hpp"
#include "scl/io/scl_endian.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"
#include "version1_file.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace test {

using tools::Rows;
using Keys = std::vector<std::string>;
using Entries = std::vector<std::unique_ptr<tla::Tla_data_set_entry_file>>;

[[nodiscard]] std::u16string wide(std::string_view narrow);

// Files of the two versions with the same content. Empty keys are no fault here.
[[nodiscard]] std::string version1(std::string_view schema, const Keys& keys, const Rows& rows,
                                   const tools::Key_hash& hash = tools::fnv1a);
[[nodiscard]] std::string version2(std::string_view schema, const Keys& keys, const Rows& rows);

// Where the parts of a file begin.
[[nodiscard]] std::uint64_t key_tables_of(const std::string& file);
[[nodiscard]] std::uint64_t pairs_of_first_key(const std::string& file);

template <std::integral T>
[[nodiscard]] T number_at(const std::string& file, std::size_t offset) {
    return scl::scl_load_le<T>(reinterpret_cast<const std::byte*>(file.data() + offset));
}
template <std::integral T>
void put(std::string& file, std::size_t offset, T value) {
    scl::scl_store_le(reinterpret_cast<std::byte*>(file.data() + offset), value);
}

// Lets all pairs of the first key table lead to the record that stands first in the file.
void share_first_record(std::string& file);

// The file with the right checksum again.
[[nodiscard]] std::string sealed(std::string file);

// Upgrades a file; returns what was written.
[[nodiscard]] std::string upgraded(std::string_view file, scl::Scl_status& status);

// The argument of a status's last code.
[[nodiscard]] std::string argument_of(const scl::Scl_status& status);

// A file on disk and a connector on it, open. A second connector that holds the file in memory is
// asked the same and must answer the same, as long as the file is not changed.
class Connected {
public:
    explicit Connected(std::string_view file);

    // The code after loading.
    scl::Scl_status_code load(bool any_version = true);
    // The record offsets found, ascending.
    std::vector<std::int64_t> find(std::string_view key, const std::u16string& text,
                                   std::uint64_t hash = 0);
    // The record offsets found by the token values of a text, in their order.
    std::vector<std::int64_t> find_records(std::size_t key, std::u16string_view text);
    auto entry(std::int64_t offset) { return connector.read_entry(offset, status); }
    [[nodiscard]] std::string path() const { return place_.path("file"); }

    scl::Scl_status status;
    tla::Tla_data_set_connector_file connector;
    tla::Tla_data_set_connector_file held;
    bool held_is_compared = true;

private:
    template <typename Ask>
    auto ask_both(const Ask& ask) {
        scl::Scl_status held_status = status;
        auto answer = ask(connector, status);
        if (held_is_compared) {
            EXPECT_EQ(ask(held, held_status), answer);
            EXPECT_EQ(held_status.value(), status.value());
        }
        return answer;
    }

    Workplace place_;
};

struct Loaded : Connected {
    explicit Loaded(std::string_view file) : Connected(file) { EXPECT_EQ(load(), 0U); }
};

} // namespace test
