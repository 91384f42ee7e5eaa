// A data set and a text with anything in them: the scanner finds what the model finds. The first
// byte is a choice, the second how many bytes the next piece of the text has; then come either
// lines of a table, or a file's bytes as they are, up to two zero bytes, and then the text.

#include "../tests/scan_listener.hpp"
#include "../tests/scan_model.hpp"
#include "records/input/tla_field_copies.hpp"
#include "records/input/tla_record_processor.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/io/scl_endian.hpp"
#include "scl/status/scl_status.hpp"
#include "tla/scan/tla_text_scan.hpp"
#include "tla/write/data_set_generator.hpp"
#include "tla/write/header_writer.hpp"

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

using Finds = std::vector<test::Scan_model::Find>;

// The model takes the cube of these, and more.
constexpr std::size_t MOST_TEXT = 200;
constexpr std::size_t MOST_ROWS = 24;

const std::vector<tla::Field_descriptor>& fields() {
    static const std::vector<tla::Field_descriptor> FIELDS = {
        {u"F0", tla::Tla_simple_formatter::TYPE_ID},
        {u"F1", tla::Tla_simplenc_formatter::TYPE_ID},
        {u"F2", tla::Tla_ccnum_formatter::TYPE_ID}};
    return FIELDS;
}

std::vector<std::string> split(std::string_view text, char at, std::size_t most) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= text.size() && parts.size() < most;) {
        const std::size_t end = std::min(text.find(at, begin), text.size());
        parts.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

std::string built_of(std::string_view table) {
    scl::Scl_status status;
    tla::Tla_record_processor processor(fields(), {}, nullptr);
    scl::Scl_heap_buffer records;
    scl::Scl_ostream out(records, status, scl::Scl_eol::none);
    for (const std::string& line : split(table, '\n', MOST_ROWS)) {
        std::vector<std::string> row = split(line, '\t', fields().size());
        row.resize(fields().size());
        tla::Tla_field_copies copies;
        for (const std::string& field : row) {
            copies.add(field);
        }
        processor.process({copies.fields()}, out, status);
    }
    out.detach(status);
    scl::Scl_heap_buffer file;
    const std::vector<std::u16string> keys = {u"F2", u"F1"};
    tla::write_data_set_file(keys, tla::Tla_header_writer(fields()), records, nullptr, file,
                             status);
    if (!status.ok()) return {};
    return {reinterpret_cast<const char*>(file.contents().data()), file.contents().size()};
}

Finds scan(const tla::Tla_scan_index& index, const tla::Tla_scan_options& options,
           std::string_view text, std::size_t piece) {
    test::Finds_listener listener;
    tla::Tla_text_scan scan(index, options);
    scan.start(listener);
    for (std::size_t at = 0; at < text.size(); at += piece) {
        scan.feed(std::as_bytes(std::span(text.substr(at, piece))));
    }
    scan.finish();
    return std::move(listener.finds);
}

// A file that breaks a rule of the format is not for the model.
std::optional<test::Small_reader> read(const std::string& file) try {
    return test::Small_reader(file);
} catch (const std::exception&) {
    return {};
}

void compare(const std::string& file, std::string_view text, std::uint8_t choice,
             std::size_t piece) {
    scl::Scl_status status;
    const auto index =
        tla::Tla_scan_index::over(std::as_bytes(std::span(file)), u"file", {}, status);
    if (index == nullptr) return;
    tla::Tla_scan_options options;
    options.least = 1 + choice % 3;
    if ((choice & 8U) != 0)
        options.within.reset();
    else
        options.within = choice >> 4U;
    options.window = (choice & 4U) != 0 ? 1 : 1000;
    options.short_text = (choice & 32U) != 0 ? 1000 : 0;
    options.is_converted = true;
    const Finds found = scan(*index, options, text, piece);
    const auto reader = read(file);
    if (!reader || text.starts_with("\xEF\xBB\xBF")) return;
    const auto keys = test::Scan_model::keys_of(*reader);
    if (test::Scan_model(*reader, keys, text).finds(*options.least, options.within) != found) {
        std::fputs("The scanner and the model do not agree.\n", stderr);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::string_view rest(reinterpret_cast<const char*>(data) + 2, size - 2);
    constexpr std::string_view BETWEEN("\0\0", 2);
    const bool is_file = rest.starts_with("KQZVDaSe");
    // A file has zero bytes of its own: there the last ones count.
    const std::size_t end =
        std::min(is_file ? rest.rfind(BETWEEN) : rest.find(BETWEEN), rest.size());
    const std::string_view first = rest.substr(0, end);
    const std::string_view text = rest.substr(std::min(rest.size(), end + 2)).substr(0, MOST_TEXT);
    compare(is_file ? std::string(first) : built_of(first), text, data[0],
            1 + data[1] % std::size_t{32});
    return 0;
}
