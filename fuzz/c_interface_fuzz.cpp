// A data set file with anything in it through the C interface: read from the file and held in
// memory it answers the same, and where it keeps all rules of the format, what a second reader
// finds in it.

#include "../tests/small_reader.hpp"
#include "fuzz_file.hpp"
#include "tla/c/dsmake.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Data_set = std::unique_ptr<dsmake_data_set, decltype(&dsmake_close)>;

// One token in every type, each.
constexpr std::array WORDS = {"ann", "lee", "42", "zoe"};
// The whole work stays within a few times the file's size.
constexpr std::size_t MOST_KEYS = 8;

void check(bool is_so) {
    if (!is_so) std::abort();
}

struct Answer {
    std::vector<std::int64_t> offsets;
    std::string message; // empty when there was no failure

    bool operator==(const Answer&) const = default;
};

Answer find(dsmake_data_set* set, const std::string& key, const char* value) {
    const std::int64_t count = dsmake_find(set, key.c_str(), value);
    Answer answer{{}, dsmake_message(set)};
    check((count < 0) != answer.message.empty());
    if (count > 0) answer.offsets.assign(dsmake_offsets(set), dsmake_offsets(set) + count);
    return answer;
}

std::optional<test::Small_reader> read_by_the_rules(const fuzz::Fuzz_file& file) {
    try {
        return test::Small_reader(file.bytes());
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

// A table that duplicates were left out of hides those behind it from readers that count pairs.
bool can_tell(const test::Small_reader& reader) {
    const auto has_all = [&reader](const test::Small_reader::Table& table) {
        return table.pairs.size() == reader.records().size();
    };
    return reader.tables().size() == 1 || std::ranges::all_of(reader.tables(), has_all);
}

std::vector<std::int64_t> expected(const test::Small_reader& reader,
                                   const test::Small_reader::Table& table, const char* word) {
    const auto field =
        std::ranges::find(reader.fields(), table.name, &test::Small_reader::Field::name);
    const auto index = static_cast<std::size_t>(field - reader.fields().begin());
    const std::string_view narrow = word;
    const auto token = test::Small_reader::token(std::u16string(narrow.begin(), narrow.end()));
    std::vector<std::int64_t> offsets;
    for (const auto& [hash, record] : table.pairs) {
        if (reader.values(record, index) == test::Small_reader::Values{token})
            offsets.push_back(static_cast<std::int64_t>(record));
    }
    std::ranges::sort(offsets);
    return offsets;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Fuzz_file file({reinterpret_cast<const std::byte*>(data), size});
    const std::string path = file.path();
    const Data_set on_disk(dsmake_open(path.c_str(), 0), &dsmake_close);
    const Data_set held(dsmake_open(path.c_str(), DSMAKE_HOLD_IN_MEMORY), &dsmake_close);
    const std::string message = dsmake_message(on_disk.get());
    check(message == dsmake_message(held.get()));
    const auto reader = read_by_the_rules(file);
    const bool is_told = reader && can_tell(*reader);
    check(!is_told || message.empty());
    std::vector<test::Small_reader::Table> tables;
    if (reader) tables = reader->tables();
    tables.resize(std::min(tables.size(), MOST_KEYS));
    for (const auto& table : tables) {
        for (const char* const word : WORDS) {
            const Answer answer = find(on_disk.get(), table.name, word);
            check(answer == find(held.get(), table.name, word));
            check(!is_told || answer == Answer{expected(*reader, table, word), ""});
        }
    }
    for (const char* const value : {"Ann Lee", "", "4111-1111", "\xC3"}) {
        check(find(on_disk.get(), "Name", value) == find(held.get(), "Name", value));
    }
    return 0;
}
