// A schema, key names and lines of text with anything in them: a build refuses them, or makes a
// file that a second reader finds to keep all rules of the format, with a record for each line.
//
// The input is the size of the windows that the text is read by (one byte), the schema up to LF,
// key names with TAB between them up to LF, and the text.

#include "../tests/piecewise_buffer.hpp"
#include "../tests/small_reader.hpp"
#include "driver/schema.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/write/build_data_set.hpp"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void check(bool is_so) {
    if (!is_so) std::abort();
}

// The text before the next `end`, which is taken off with it.
std::string_view next(std::string_view& rest, char end) {
    const std::string_view piece = rest.substr(0, rest.find(end));
    rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
    return piece;
}

std::vector<std::u16string> key_names_of(std::string_view names) {
    std::vector<std::u16string> wide;
    while (!names.empty()) {
        scl::scl_stow(next(names, '\t'), wide.emplace_back());
    }
    return wide;
}

bool is_known(const driver::Schema& schema) {
    return std::ranges::none_of(schema.types,
                                [](const auto& type) { return type == tla::Formatter_type_id{}; });
}

// Whether the text is one word of ASCII in lower case, of which every type makes the same token.
bool is_plain(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= 'a' && c <= 'z'; });
}

void check_records(const test::Small_reader& reader, std::string_view text) {
    for (const std::uint64_t record : reader.records()) {
        std::string_view line = next(text, '\n');
        if (line.ends_with('\r')) line.remove_suffix(1);
        for (std::size_t field = 0; field < reader.fields().size(); ++field) {
            const std::string_view value = next(line, '\t');
            if (!is_plain(value)) continue;
            const auto token =
                test::Small_reader::token(std::u16string(value.begin(), value.end()));
            check(reader.values(record, field) == test::Small_reader::Values{token});
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    driver::Schema schema;
    if (!driver::parse_schema(next(text, '\n'), schema) || schema.fields.empty()) return 0;
    const std::vector<std::u16string> keys = key_names_of(next(text, '\n'));
    if (keys.empty()) return 0;
    std::vector<std::uint64_t> positions;
    driver::resolve_keys(schema.fields, keys, positions);
    scl::Scl_status status;
    scl::Scl_heap_buffer whole;
    whole.write_at(0, std::as_bytes(std::span(text)), status);
    const test::Piecewise_buffer input(whole);
    scl::Scl_buffered_istream in(input, status);
    in.limit_read_ahead(std::size_t{1} + data[0]);
    scl::Scl_heap_buffer scratch;
    scl::Scl_heap_buffer output;
    const tla::Tla_build_result built =
        tla::build_data_set({schema.fields, keys, positions}, in, scratch, output, status);
    if (built.reading != tla::Tla_read_result::finished || status.has_failed()) return 0;
    const auto lines = static_cast<std::uint64_t>(std::ranges::count(text, '\n'));
    check(built.line_count == lines);
    if (!is_known(schema)) return 0; // such a column is in no record, so records cannot be read
    check(built.record_count == lines);
    const auto bytes = output.contents();
    const test::Small_reader reader({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    check(reader.records().size() == lines && reader.tables().size() == keys.size());
    check_records(reader, text);
    return 0;
}
