#include "records/input/tla_field_copies.hpp"
#include "records/input/tla_record_reader.hpp"
#include "records/values/tla_formatters.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/io/scl_buffers.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using tla::Tla_read_result;

// Gives the bytes before a place, and a read error from there on.
class Failing_file final : public scl::Scl_buffer {
public:
    Failing_file(std::string_view bytes, std::size_t fails_from)
        : bytes_(bytes), fails_from_(fails_from) {}

    [[nodiscard]] std::uint64_t size(bool /*in_units*/,
                                     scl::Scl_status& /*status*/) const override {
        return bytes_.size();
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        scl::Scl_status& status) const override {
        const std::string_view rest = bytes_.substr(0, fails_from_).substr(offset);
        const std::string_view found = rest.substr(0, bytes.size());
        std::ranges::copy(std::as_bytes(std::span(found)), bytes.begin());
        if (fails_from_ < std::min(bytes_.size(), offset + bytes.size()))
            status.push(scl::SCL_STATUS_READ_FAILED);
        return found.size();
    }

private:
    std::string_view bytes_;
    std::size_t fails_from_;
};

constexpr std::size_t NEVER = std::size_t{1} << 40U;
constexpr std::size_t COLUMNS = 2; // of which the second is the key

struct Outcome {
    Tla_read_result result = Tla_read_result::finished;
    scl::Scl_status_code code = 0;
    std::string records;

    bool operator==(const Outcome&) const = default;
};

// A processor and what it writes.
struct Bench {
    Outcome outcome_of(Tla_read_result result) {
        out.detach(status);
        const auto bytes = written.contents();
        return {
            result, status.value(), {reinterpret_cast<const char*>(bytes.data()), bytes.size()}};
    }

    const std::vector<tla::Field_descriptor> columns{{u"A", tla::Tla_simple_formatter::TYPE_ID},
                                                     {u"B", tla::Tla_simplenc_formatter::TYPE_ID}};
    const std::vector<std::uint64_t> keys{1};
    scl::Scl_status status;
    scl::Scl_heap_buffer written;
    scl::Scl_ostream out{written};
    tla::Tla_record_processor processor{columns, keys, nullptr};
};

// Reads in windows of so many bytes.
Outcome read(std::string_view input, std::size_t window, std::size_t fails_from = NEVER) {
    const Failing_file file(input, fails_from);
    Bench bench;
    scl::Scl_buffered_istream in(file, bench.status);
    in.limit_read_ahead(window);
    tla::Tla_record_reader reader(bench.processor, bench.out);
    return bench.outcome_of(reader.read_records(in, bench.status));
}

// Byte after byte, each looked at when it is there. What cannot be read is no byte.
class Slow_reader {
public:
    explicit Slow_reader(std::string_view input, std::size_t fails_from = NEVER)
        : input_(input.substr(0, fails_from)), is_whole_(fails_from >= input.size()) {}

    Outcome read() {
        while (at_ < input_.size() && result_ == Tla_read_result::finished && bench_.status.ok()) {
            take(input_[at_]);
        }
        const bool is_good = result_ == Tla_read_result::finished && bench_.status.ok();
        if (is_good && !is_whole_) bench_.status.push(scl::SCL_STATUS_READ_FAILED);
        return bench_.outcome_of(result_);
    }

private:
    void take(char byte) {
        const std::string_view rest = input_.substr(at_++);
        if (byte == '\t') {
            end_field();
        } else if (byte == '\n' || rest.starts_with("\r\n")) {
            at_ += byte == '\r' ? 1 : 0;
            end_field();
            end_record();
        } else if (byte == '\r') {
            result_ = Tla_read_result::invalid_line_ending;
        } else if (rest.starts_with("\xEF\xBB\xBF")) {
            at_ += 2;
        } else {
            field_ += byte;
        }
    }
    void end_field() {
        fields_.add(field_);
        ++count_;
        field_.clear();
    }
    void end_record() {
        if (count_ != COLUMNS) {
            result_ = Tla_read_result::field_count_mismatch;
            return;
        }
        bench_.processor.process({fields_.fields()}, bench_.out, bench_.status);
        fields_.clear();
        count_ = 0;
    }

    std::string_view input_;
    bool is_whole_;
    std::size_t at_ = 0;
    Tla_read_result result_ = Tla_read_result::finished;
    std::string field_;
    tla::Tla_field_copies fields_;
    std::size_t count_ = 0;
    Bench bench_;
};

// Lines of two fields, mostly; marks and line ends of all kinds, cut marks and faults now and then.
std::string random_input(std::mt19937& random) {
    static const std::vector<std::string> PIECES = {
        "a",  "Smith", "Zo\xC3\xAB", "O'Brien", " ",        "4111-1111", "\xEF\xBB\xBF",
        "\t", "\r\n",  "\xEF\xBB",   "\xEF",    "\xFF\xBF", "a\tb\n",    std::string(70, 'w')};
    std::string input;
    for (std::size_t lines = random() % 8; lines > 0; --lines) {
        for (std::size_t pieces = random() % 4; pieces > 0; --pieces) {
            input += PIECES[random() % PIECES.size()];
        }
        input += random() % 20 == 0 ? "" : "\tkey";
        input += random() % 30 == 0 ? "\r" : random() % 3 == 0 ? "\r\n" : "\n";
    }
    return input;
}

TEST(Record_reader, ReadsInWindowsOfAnySizeWhatBytesSay) {
    std::mt19937 random(6); // NOLINT: the same numbers each time
    int finished = 0;
    for (int round = 0; round < 6000; ++round) {
        const std::string input = random_input(random);
        const Outcome expected = Slow_reader(input).read();
        for (const std::size_t window : {std::size_t{1}, 1 + random() % 100, std::size_t{60000}}) {
            ASSERT_EQ(read(input, window), expected) << testing::PrintToString(input) << window;
        }
        const std::size_t cut = random() % (input.size() + 1);
        ASSERT_EQ(read(input, 1 + random() % 50, cut), Slow_reader(input, cut).read())
            << testing::PrintToString(input) << cut;
        if (expected.result == Tla_read_result::finished) ++finished;
    }
    EXPECT_GT(finished, 2000) << "and most of the others break a rule after some lines";
}

// A record beyond what is put together in memory is written field by field.
TEST(Record_reader, LargeRecordsHoldTheSameValues) {
    const std::string small = read("a b\t!\n", 100).records;
    const std::string value = small.substr(small.size() - 9, 8);
    constexpr std::size_t TOKENS = 5000; // 40,000 bytes, count 0x1388
    std::string expected = small.substr(0, small.size() - 11) + "\x13\x88";
    for (std::size_t i = 0; i < TOKENS; ++i) {
        expected += value;
    }
    const Outcome large = read("a b\t" + std::string(TOKENS, '!') + "\na b\t!\n", 100);
    EXPECT_TRUE(large.records == expected + std::string(1, '\0') + small);
}

// The fault comes long before the end of what cannot be held in memory, and the window with it.
TEST(Record_reader, TellsAFaultBeforeItReadsOn) {
    const std::string long_line(1 << 20U, 'x');
    for (const auto& [start, result] : {std::pair{"a\n", Tla_read_result::field_count_mismatch},
                                        {"a\tb\nc\rd", Tla_read_result::invalid_line_ending}}) {
        const Outcome outcome = read(start + long_line, 4096, 5000);
        EXPECT_EQ(outcome.result, result);
        EXPECT_EQ(outcome.code, 0U) << "nothing was read from where it fails";
    }
}

} // namespace
