// A data set file with anything in it: loading, listing, entries and lookups end with a status.

#include "fuzz_file.hpp"
#include "scl/io/scl_endian.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"

namespace {

// The whole work stays within a few times the file's size.
constexpr std::size_t MOST_KEYS = 8;

std::u16string wide(std::string_view narrow) {
    std::u16string text;
    scl::scl_stow(narrow, text);
    return text;
}

void ask(const tla::Tla_data_set_entry_file& entry,
         const std::vector<tla::Field_descriptor>& fields) {
    std::vector<std::uint64_t> values;
    std::u16string text;
    tla::Formatter_type_id type;
    (void)entry.token_values(fields.back().name, values, type);
    (void)entry.text_value(fields.back().name, text, type);
}

void read_entries(tla::Tla_data_set_connector_file& connector) {
    scl::Scl_status status;
    std::uint64_t left = connector.file_size();
    for (const std::int64_t offset : connector.record_offsets(status)) {
        status.clear();
        const auto entry = connector.read_entry(offset, status);
        if (entry == nullptr) continue;
        ask(*entry, connector.field_descriptors());
        if (entry->record_size() >= left) return;
        left -= entry->record_size();
    }
}

void look_up(tla::Tla_data_set_connector_file& connector, std::uint64_t hash) {
    std::vector<std::u16string> keys = connector.key_names();
    keys.resize(std::min(keys.size(), MOST_KEYS));
    for (const std::u16string& key : keys) {
        for (const char16_t* const text : {u"ann", u"4111 1111", u""}) {
            scl::Scl_status status;
            std::vector<std::unique_ptr<tla::Tla_data_set_entry_file>> found;
            connector.find_entries({hash, text}, key, found, status);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(reinterpret_cast<const std::byte*>(data), size);
    const fuzz::Fuzz_file file(bytes);
    tla::Tla_data_set_connector_file connector;
    scl::Scl_status status;
    connector.set_parameter("DataFileName", wide(file.path()), status);
    connector.open(status);
    connector.load(status, true);
    read_entries(connector);
    // In a proper file, the hash of the last pair.
    look_up(connector, size < 16 ? 0 : scl::scl_load_le<std::uint64_t>(&bytes[size - 16]));
    return 0;
}
