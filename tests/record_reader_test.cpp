#include "piecewise_buffer.hpp"
#include "records/parallel_record_reader.hpp"
#include "records/tla_formatters.hpp"
#include "records/tla_status_codes.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using tla::Tla_read_result;

struct Outcome {
    Tla_read_result result = Tla_read_result::finished;
    scl::Scl_status_code code = 0;
    std::string records;

    bool operator==(const Outcome&) const = default;
};

Outcome read(std::string_view input, bool in_parallel) {
    const std::vector types = {tla::tla_formatter_type_id_from_name("Simple"),
                               tla::tla_formatter_type_id_from_name("SimpleNC")};
    const std::vector<std::uint64_t> keys = {1};
    scl::Scl_status status;
    scl::Scl_heap_buffer whole;
    whole.write_at(0, std::as_bytes(std::span(input)), status);
    const test::Piecewise_buffer file(whole);
    scl::Scl_buffered_istream in(file, false, status, scl::Scl_eol::text);
    scl::Scl_heap_buffer written;
    scl::Scl_ostream out(written, status, scl::Scl_eol::none);
    tla::Tla_record_processor processor(types, keys);
    Outcome outcome;
    outcome.result =
        in_parallel ? tla::Parallel_record_reader(in, types, keys, out).read_records(status)
                    : tla::Tla_record_reader(processor, out).read_records(whole.contents(), status);
    out.detach(status);
    outcome.code = status.value();
    if (status.has_failed() || outcome.result != Tla_read_result::finished) return outcome;
    const auto bytes = written.contents();
    outcome.records.assign(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return outcome;
}

// Lines for several batches, with these among them.
std::string lines_with(const std::string& first, const std::string& second) {
    std::string lines;
    for (int i = 0; i < 120000; ++i) {
        lines += "Zo\xC3\xAB" + std::to_string(i) + " of some length\tkey\r\n";
        if (i == 70000) lines += first;
        if (i == 100000) lines += second;
    }
    return lines;
}

TEST(RecordReader, ReadsInParallelWhatItReadsAlone) {
    const std::string long_line = std::string(3 << 20U, 'x') + "\ty\n";
    for (const std::string& good : {std::string(), std::string("a\tb"),
                                    lines_with("a\tb\n", "\xEF\xBB\xBF"
                                                         "c\td\n"),
                                    lines_with(long_line, long_line) + "no line end"}) {
        const Outcome outcome = read(good, true);
        EXPECT_EQ(outcome.result, Tla_read_result::finished);
        EXPECT_EQ(outcome.code, 0U);
        EXPECT_TRUE(outcome == read(good, false));
    }
}

TEST(RecordReader, TheFirstFaultCounts) {
    const std::string no_key = "a\t \n";
    const std::string no_field = "a\n";
    EXPECT_EQ(read(lines_with(no_key, no_field), true).code, tla::TLA_STATUS_EMPTY_KEY);
    EXPECT_EQ(read(lines_with(no_field, no_key), true).result,
              Tla_read_result::field_count_mismatch);
    EXPECT_EQ(read(lines_with("", no_field), true).result, Tla_read_result::field_count_mismatch);
    EXPECT_EQ(read(lines_with("a\rb\tc\n", no_field), true).result,
              Tla_read_result::invalid_line_ending);
    EXPECT_EQ(read(lines_with("", "") + "a\tb\r", true).result,
              Tla_read_result::invalid_line_ending);
}

} // namespace
