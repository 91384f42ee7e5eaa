#include "version1_file.hpp"

#include "records/values/tla_formatters.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_endian.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/sort/pair_pages.hpp"

#include <algorithm>
#include <span>
#include <stdexcept>

namespace tools {

namespace {

constexpr std::uint16_t OLD_VERSION = 1;
constexpr std::size_t KEY_TABLE_OFFSET_PLACE = 16;

template <std::integral T>
void append_le(std::string& bytes, T value) {
    scl::Scl_raw<T> raw{};
    scl::scl_store_le(raw.data(), value);
    bytes.append(reinterpret_cast<const char*>(raw.data()), raw.size());
}

template <std::integral T>
void put_le(std::string& bytes, std::size_t offset, T value) {
    scl::scl_store_le(reinterpret_cast<std::byte*>(bytes.data() + offset), value);
}

void pad(std::string& bytes) {
    bytes.resize(tla::tla_aligned(bytes.size()));
}

void append_header(std::string& bytes, const std::vector<tla::Field_descriptor>& fields,
                   std::size_t key_count, std::size_t record_count) {
    bytes += tla::TLA_DATA_SET_MAGIC;
    append_le(bytes, std::uint64_t{0}); // the checksum, last of all
    append_le(bytes, std::uint64_t{0}); // where the key tables begin, when the records are there
    append_le(bytes, OLD_VERSION);
    append_le(bytes, static_cast<std::uint16_t>(key_count));
    append_le(bytes, static_cast<std::uint32_t>(record_count));
    for (const tla::Field_descriptor& field : fields) {
        scl::scl_string_append(bytes, field.name);
        bytes += tla::TLA_FIELD_NAME_END;
        bytes += tla::tla_formatter_name_from_type_id(field.type);
        bytes += tla::TLA_NAME_END;
    }
    bytes += tla::TLA_FIELD_LIST_END;
    pad(bytes);
}

// Returns where each record begins.
std::vector<std::uint64_t> append_records(std::string& bytes, const Rows& rows) {
    const std::size_t data_start = bytes.size();
    std::vector<std::uint64_t> offsets;
    for (const auto& texts : rows) {
        offsets.push_back(bytes.size());
        for (const std::string& text : texts) {
            bytes += text;
            bytes += &text == &texts.back() ? tla::TLA_TEXT_RECORD_END : tla::TLA_TEXT_END;
        }
    }
    for (std::size_t i = data_start; i < bytes.size(); ++i) {
        bytes[i] = tla::tla_scrambled(bytes[i], i - data_start);
    }
    return offsets;
}

void append_key_table(std::string& bytes, std::string_view name,
                      std::vector<tla::Index_pair> pairs) {
    bytes += name;
    bytes += tla::TLA_NAME_END;
    pad(bytes);
    std::ranges::stable_sort(pairs, tla::hash_less);
    for (const tla::Index_pair& pair : pairs) {
        append_le(bytes, pair.key_hash);
        append_le(bytes, pair.record_offset);
    }
}

std::size_t column_of(const std::vector<tla::Field_descriptor>& fields, std::string_view name) {
    std::u16string wide;
    scl::scl_string_append(wide, name);
    const auto found = std::ranges::find(fields, wide, &tla::Field_descriptor::name);
    if (found == fields.end()) throw std::invalid_argument("no such field: " + std::string(name));
    return static_cast<std::size_t>(found - fields.begin());
}

void check_rows(const Rows& rows, std::size_t field_count) {
    const bool fit = std::ranges::all_of(
        rows, [field_count](const auto& texts) { return texts.size() == field_count; });
    if (!fit) throw std::invalid_argument("a row does not have as many texts as there are fields");
}

} // namespace

std::uint64_t fnv1a(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char byte : text) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    }
    return hash;
}

std::string make_version1_file(const std::vector<tla::Field_descriptor>& fields,
                               const std::vector<std::string>& key_names, const Rows& rows,
                               const Key_hash& hash) {
    check_rows(rows, fields.size());
    std::string bytes;
    append_header(bytes, fields, key_names.size(), rows.size());
    const std::vector<std::uint64_t> offsets = append_records(bytes, rows);
    put_le(bytes, KEY_TABLE_OFFSET_PLACE, std::uint64_t{bytes.size()});
    for (const std::string& name : key_names) {
        const std::size_t column = column_of(fields, name);
        std::vector<tla::Index_pair> pairs;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            pairs.push_back({hash(rows[i][column]), offsets[i]});
        }
        append_key_table(bytes, name, std::move(pairs));
    }
    scl::Scl_crc64 checksum;
    checksum.update(std::as_bytes(std::span(bytes)).subspan(tla::TLA_CHECKED_FROM));
    put_le(bytes, tla::TLA_CHECKSUM_OFFSET, checksum.result(false));
    return bytes;
}

} // namespace tools
