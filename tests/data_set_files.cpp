#include "data_set_files.hpp"

#include "driver/schema.hpp"
#include "records/input/tla_field_copies.hpp"
#include "records/input/tla_record_processor.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/upgrade/upgrade_data_set.hpp"
#include "tla/write/data_set_generator.hpp"
#include "tla/write/header_writer.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <algorithm>

namespace test {

namespace {

std::string bytes_in(const scl::Scl_buffer& buffer) {
    const auto bytes = buffer.contents();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
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
    tla::Tla_record_processor processor(parsed.fields, {}, nullptr);
    scl::Scl_status status;
    scl::Scl_heap_buffer records;
    scl::Scl_ostream out(records);
    for (const auto& row : rows) {
        tla::Tla_field_copies fields;
        for (const std::string& text : row) {
            fields.add(text);
        }
        processor.process({fields.fields()}, out, status);
    }
    out.detach(status);
    scl::Scl_heap_buffer file;
    tla::write_data_set_file(all_wide(keys), tla::Tla_header_writer(parsed.fields), records,
                             nullptr, file, status);
    if (!status.ok()) throw std::runtime_error("the file cannot be built");
    return bytes_in(file);
}

std::uint64_t key_tables_of(const std::string& file) {
    return number_at<std::uint64_t>(file, 16);
}

std::uint64_t pairs_of_first_key(const std::string& file) {
    return tla::tla_aligned(file.find('\0', key_tables_of(file)) + 1);
}

void share_first_record(std::string& file) {
    const std::uint64_t first_offset = pairs_of_first_key(file) + 8;
    std::uint64_t first = file.size();
    for (std::size_t at = first_offset; at < file.size(); at += 16) {
        first = std::min(first, number_at<std::uint64_t>(file, at));
    }
    for (std::size_t at = first_offset; at < file.size(); at += 16) {
        put(file, at, first);
    }
}

std::string sealed(std::string file) {
    put(file, 8, ~scl::Scl_crc64::calculate(file.data() + 16, file.size() - 16, ~0ULL));
    return file;
}

std::string upgraded(std::string_view file, scl::Scl_status& status) {
    const Workplace place;
    place.write("old", file);
    scl::Scl_heap_buffer output;
    tla::upgrade_data_set(place.path("old").string(), output, status);
    return bytes_in(output);
}

std::string argument_of(const scl::Scl_status& status) {
    std::string text;
    const auto& argument = status.entries().back().argument;
    if (argument != nullptr) scl::scl_string_append(text, argument->text());
    return text;
}

Connected::Connected(std::string_view file) {
    place_.write("file", file);
    held.hold_in_memory();
    for (auto* const opened : {&connector, &held}) {
        opened->set_parameter("DataFileName", wide(path()), status);
        opened->open(status);
    }
}

scl::Scl_status_code Connected::load(bool any_version) {
    return ask_both([any_version](auto& asked, scl::Scl_status& code) {
        asked.load(code, any_version);
        return code.value();
    });
}

std::vector<std::int64_t> Connected::find(std::string_view key, const std::u16string& text,
                                          std::uint64_t hash) {
    const auto ask = [&](auto& asked, scl::Scl_status& code) {
        Entries entries;
        asked.find_entries({hash, text.c_str()}, wide(key), entries, code);
        std::vector<std::int64_t> offsets;
        for (const auto& found : entries) {
            offsets.push_back(found->record_offset());
        }
        std::ranges::sort(offsets);
        return offsets;
    };
    return ask_both(ask);
}

std::vector<std::int64_t> Connected::find_records(std::size_t key, std::u16string_view text) {
    std::vector<std::uint64_t> values;
    (void)txtdfc::txtdfc_token_values(text, values);
    const auto ask = [&](auto& asked, scl::Scl_status& code) {
        std::vector<std::int64_t> offsets;
        asked.find_records(values, key, offsets, code);
        return offsets;
    };
    return ask_both(ask);
}

} // namespace test
