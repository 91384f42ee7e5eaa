#include "records/input/tla_field_copies.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/io/scl_buffers.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/write/build_data_set.hpp"
#include "tla/write/data_set_generator.hpp"
#include "tla/write/header_writer.hpp"

#include <gtest/gtest.h>

#include <random>

namespace {

using Keys = std::vector<std::u16string>;

std::string bytes_in(const scl::Scl_buffer& buffer) {
    const auto bytes = buffer.contents();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// A build in memory.
struct Build {
    Build(const std::string& lines, const std::vector<std::string_view>& type_names,
          const Keys& keys) {
        for (const std::string_view name : type_names) {
            fields.push_back({std::u16string(1, static_cast<char16_t>(u'A' + fields.size())),
                              tla::tla_formatter_type_id_from_name(name)});
        }
        scl::Scl_heap_buffer input;
        input.write_at(0, std::as_bytes(std::span(lines)), status);
        scl::Scl_buffered_istream in(input, status);
        result = tla::build_data_set({fields, keys, {}}, in, scratch, output, status);
    }

    std::vector<tla::Field_descriptor> fields;
    scl::Scl_status status;
    scl::Scl_heap_buffer scratch;
    scl::Scl_heap_buffer output;
    tla::Tla_build_result result;
};

// What is kept while records are made, and what is read of the scratch file, say the same.
TEST(Build_data_set, KeepsThePairsThatAreReadElse) {
    std::mt19937 random(5);                        // NOLINT: the same numbers each time
    for (const std::size_t marks : {0U, 40000U}) { // then a record is too large to be kept
        std::string lines;
        for (int i = 0; i < 20000; ++i) {
            lines += "n" + std::to_string(random() % 3000) + " \xC3\xA9\tk" +
                     std::to_string(random() % 50) + "\n";
            if (i % 9999 == 5000) lines += std::string(marks, '!') + "\tkey\n";
        }
        const Keys keys = {u"B", u"A"};
        const Build build(lines, {"Simple", "SimpleNC"}, keys);
        EXPECT_TRUE(build.status.is_warning()) << "of duplicates";
        EXPECT_EQ(build.result.record_count, 20002U);
        scl::Scl_heap_buffer read_again;
        scl::Scl_status status;
        tla::write_data_set_file(keys, tla::Tla_header_writer(build.fields), build.scratch, nullptr,
                                 read_again, status);
        EXPECT_TRUE(bytes_in(read_again) == bytes_in(build.output));
    }
}

// Fails each write but the first ones, or only the one after them; may be unable to be cut.
class Short_of_room final : public scl::Scl_buffer {
public:
    Short_of_room(std::size_t good_writes, bool for_good, bool can_be_cut)
        : good_writes_(good_writes), for_good_(for_good), can_be_cut_(can_be_cut) {}

    [[nodiscard]] std::uint64_t size(bool in_units, scl::Scl_status& status) const override {
        return held_.size(in_units, status);
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        scl::Scl_status& status) const override {
        return held_.read_at(offset, bytes, status);
    }
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                  scl::Scl_status& status) override {
        const bool fails = for_good_ ? writes_ >= good_writes_ : writes_ == good_writes_;
        ++writes_;
        if (fails) return status.push(scl::SCL_STATUS_WRITE_FAILED);
        held_.write_at(offset, bytes, status);
    }
    void truncate(std::uint64_t size, scl::Scl_status& status) override {
        if (!can_be_cut_) return status.push(scl::SCL_STATUS_WRITE_FAILED);
        held_.truncate(size, status);
    }
    [[nodiscard]] std::span<const std::byte> contents() const override { return held_.contents(); }

private:
    scl::Scl_heap_buffer held_;
    std::size_t writes_ = 0;
    std::size_t good_writes_;
    bool for_good_;
    bool can_be_cut_;
};

// Records go to both files while they are made. What goes wrong with that copy is only told when
// nothing else helps, and an error in the input leaves the output empty.
TEST(Build_data_set, TheEarlyCopyOfRecordsIsNotNoticed) {
    std::string lines;
    for (int i = 0; i < 40000; ++i) {
        lines += "a" + std::to_string(i) + "\tb c\n";
    }
    const std::vector<std::string_view> types = {"Simple", "SimpleNC"};
    const Build good(lines, types, {u"B"});
    const auto build = [&](const std::string& input, scl::Scl_buffer& scratch,
                           scl::Scl_buffer& output, scl::Scl_status& status) {
        scl::Scl_heap_buffer text;
        text.write_at(0, std::as_bytes(std::span(input)), status);
        scl::Scl_buffered_istream in(text, false, status, scl::Scl_eol::text);
        return tla::build_data_set({good.fields, Keys{u"B"}, {}}, in, scratch, output, status);
    };
    for (const std::size_t writes : {0U, 1U, 2U, 4U}) { // the first are zeros and records
        for (const bool can_be_cut : {false, true}) {
            scl::Scl_status status;
            scl::Scl_heap_buffer scratch;
            Short_of_room output(writes, false, can_be_cut);
            (void)build(lines, scratch, output, status);
            EXPECT_EQ(status.value(), 0U);
            EXPECT_TRUE(bytes_in(output) == bytes_in(good.output)) << writes;
        }
        scl::Scl_status status;
        Short_of_room scratch(writes, false, true);
        scl::Scl_heap_buffer output;
        (void)build(lines, scratch, output, status);
        EXPECT_TRUE(bytes_in(output) == bytes_in(good.output)) << writes;
        Short_of_room full(writes, true, true);
        scl::Scl_heap_buffer other_scratch;
        (void)build(lines, other_scratch, full, status = {});
        EXPECT_EQ(status.value(), scl::SCL_STATUS_WRITE_FAILED);
        scl::Scl_heap_buffer third_scratch;
        scl::Scl_heap_buffer emptied;
        const auto result = build(lines + "one field\n", third_scratch, emptied, status = {});
        EXPECT_EQ(result.reading, tla::Tla_read_result::field_count_mismatch);
        EXPECT_EQ(bytes_in(emptied), "");
    }
}

TEST(Build_data_set, CountsLinesAndWhatCanBeRead) {
    std::string lines;
    for (int i = 0; i < 5000; ++i) {
        lines += "a" + std::to_string(i) + "\tb\tc\n";
    }
    const Build build(lines, {"Simple", "Simple", "CCNUMER"}, {u"B"});
    EXPECT_EQ(build.status.value(), 0U);
    EXPECT_EQ(build.result.line_count, 5000U);
    EXPECT_EQ(build.result.record_count, 1U);
}

TEST(Build_data_set, CountsRecordsWithACountThatWraps) {
    const std::string most(65535, '!');
    const std::string wraps = most + '!';
    const std::string lines =
        most + "\t" + most + "\nb\tc\n" + wraps + '\t' + wraps + "\nd\te\nf\t" + wraps + "!!\n";
    const Build build(lines, {"Simple", "SimpleNC"}, {u"A"});
    EXPECT_EQ(build.result.wrapped.count, 2U) << "a record with two such fields is one";
    EXPECT_EQ(build.result.wrapped.first, 3U);
    const Build unknown(lines, {"Unknown", "Whatever"}, {u"A"});
    EXPECT_EQ(unknown.result.wrapped.count, 0U) << "nothing of such a column is written";
}

TEST(Build_data_set, RefusesMoreThanAHeaderCanCount) {
    static_assert(tla::Tla_header_counts::can_hold(1, 0xFFFFFFFF));
    static_assert(!tla::Tla_header_counts::can_hold(1, 0x100000000)); // takes too long to build
    const Build most("a\n", {"Simple"}, Keys(65535, u"A"));
    EXPECT_EQ(most.status.value(), 0U);
    const Build more("a\n", {"Simple"}, Keys(65536, u"A"));
    EXPECT_EQ(more.status.value(), tla::TLA_STATUS_TOO_MANY_PAIRS);
    EXPECT_EQ(bytes_in(more.output), "");
}

} // namespace
