#include "data_set_files.hpp"

#include "driver/schema.hpp"
#include "records/record_processor.hpp"
#include "scl/scl_crc64.hpp"
#include "scl/scl_heap_buffer.hpp"
#include "scl/scl_string.hpp"
#include "tla/data_set_generator.hpp"
#include "tla/data_set_layout.hpp"

#include <algorithm>

namespace test {

namespace {

template <std::integral T>
T number_at(const std::string& file, std::size_t offset) {
    return scl::scl_load_le<T>(reinterpret_cast<const std::byte*>(file.data() + offset));
}

std::vector<std::u16string> all_wide(const std::vector<std::string>& texts) {
    std::vector<std::u16string> all(texts.size());
    std::ranges::transform(texts, all.begin(), wide);
    return all;
}

} // namespace

std::u16string wide(std::string_view narrow) {
    std::u16string text;
    scl::scl_string_append(text, narrow);
    return text;
}

std::string version1(std::string_view schema, const Keys& keys, const Rows& rows,
                     const tools::Key_hash& hash) {
    driver::Schema parsed;
    (void)driver::parse_schema(schema, parsed);
    return tools::make_version1_file(parsed.fields, keys, rows, hash);
}

std::string version2(std::string_view schema, const Keys& keys, const Rows& rows) {
    driver::Schema parsed;
    (void)driver::parse_schema(schema, parsed);
    tla::Record_processor processor(parsed.types, {});
    scl::Scl_status status;
    scl::Scl_heap_buffer records;
    scl::Scl_ostream out(records, status, scl::Scl_eol::none);
    for (const auto& row : rows) {
        std::vector<std::u16string> texts = all_wide(row);
        processor.process(texts, out, status);
    }
    out.detach(status);
    scl::Scl_heap_buffer file;
    tla::write_data_set_file(all_wide(keys), parsed.fields, records, file, status);
    if (!status.ok()) throw std::runtime_error("the file cannot be built");
    const auto bytes = file.contents();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::uint64_t key_tables_of(const std::string& file) {
    return number_at<std::uint64_t>(file, 16);
}

std::uint64_t pairs_of_first_key(const std::string& file) {
    return tla::aligned(file.find('\0', key_tables_of(file)) + 1);
}

void share_first_record(std::string& file) {
    const std::size_t pairs = pairs_of_first_key(file);
    const auto count = number_at<std::uint32_t>(file, 28);
    std::uint64_t first = file.size();
    for (std::size_t i = 0; i < count; ++i) {
        first = std::min(first, number_at<std::uint64_t>(file, pairs + i * 16 + 8));
    }
    for (std::size_t i = 0; i < count; ++i) {
        put(file, pairs + i * 16 + 8, first);
    }
}

std::string sealed(std::string file) {
    put(file, 8, ~scl::Scl_crc64::calculate(file.data() + 16, file.size() - 16, ~0ULL));
    return file;
}

std::string argument_of(const scl::Scl_status& status) {
    std::string text;
    const auto& argument = status.entries().back().argument;
    if (argument != nullptr) scl::scl_string_append(text, argument->text());
    return text;
}

Connected::Connected(std::string_view file) {
    place_.write("file", file);
    connector.set_parameter("DataFileName", wide(path()), status);
    connector.open(status);
}

scl::Scl_status_code Connected::load(bool any_version) {
    connector.load(status, any_version);
    return status.value();
}

std::vector<std::int64_t> Connected::find(std::string_view key, const std::u16string& text,
                                          std::uint64_t hash) {
    Entries entries;
    connector.find_entries({hash, text.c_str()}, wide(key), entries, status);
    std::vector<std::int64_t> offsets;
    for (const auto& found : entries) {
        offsets.push_back(found->record_offset());
    }
    std::ranges::sort(offsets);
    return offsets;
}

std::unique_ptr<tla::Tla_data_set_entry_file> Connected::entry(std::int64_t offset) {
    return connector.read_entry(offset, status);
}

} // namespace test
