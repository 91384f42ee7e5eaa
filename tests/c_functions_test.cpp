// The C interface, with what a caller in C may do wrong.

#include "data_set_files.hpp"
#include "tla/c/dsmake.h"

#include <algorithm>
#include <array>
#include <memory>
#include <thread>

namespace test {

namespace {

struct Close {
    void operator()(dsmake_data_set* set) const { dsmake_close(set); }
    void operator()(dsmake_scan* scan) const { dsmake_scan_close(scan); }
    void operator()(dsmake_tokeniser* tokeniser) const { dsmake_tokeniser_close(tokeniser); }
};
using Set = std::unique_ptr<dsmake_data_set, Close>;
using Scan = std::unique_ptr<dsmake_scan, Close>;
using Numbers = std::vector<std::uint64_t>;

constexpr std::string_view SCHEMA = "Name,SimpleNC;Card,CCNUMBER;Place,Simple";

class Dsmake_h : public testing::Test {
protected:
    Dsmake_h() {
        place_.write("in", "Ann O'Neil\t4111 1111\tCork\nBob\t-\tKöln\nann o'neil\t5\tX\n");
        EXPECT_EQ(place_.run(build_arguments(std::string(SCHEMA), {"Name", "Card"})).exit_status,
                  0);
    }

    [[nodiscard]] Set open(unsigned flags = DSMAKE_HOLD_IN_MEMORY) const {
        Set set(dsmake_open(place_.path("out").c_str(), flags));
        EXPECT_STREQ(dsmake_message(set.get()), "");
        return set;
    }

    Workplace place_;
};

std::vector<std::int64_t> offsets_of(dsmake_data_set* set, std::int64_t count) {
    EXPECT_GE(count, 0) << dsmake_message(set);
    const std::int64_t* const offsets = dsmake_offsets(set);
    return {offsets, offsets + std::max<std::int64_t>(count, 0)};
}

// All that a record has: for each field the number of its values and then these.
Numbers record_of(dsmake_data_set* set) {
    Numbers numbers;
    for (std::uint32_t field = 0; field < dsmake_field_count(set); ++field) {
        const std::uint64_t* values = nullptr;
        const std::int64_t count = dsmake_record_values(set, field, &values);
        EXPECT_GE(count, 0) << dsmake_message(set);
        numbers.push_back(static_cast<std::uint64_t>(count));
        numbers.insert(numbers.end(), values, values + count);
    }
    return numbers;
}

int note(void* context, const dsmake_find_in_text* find) {
    auto& notes = *static_cast<std::vector<std::string>*>(context);
    notes.push_back(std::to_string(find->line) + ' ' + std::to_string(find->place) + ' ' +
                    std::string(find->quote.bytes, find->quote.size) + ' ' +
                    std::to_string(find->field_count) + (find->quote_is_whole != 0 ? "" : "..."));
    return notes.size() < 2 ? 1 : 0;
}

using Steps = std::array<int, 4>;

// The results of start, two feeds, cut inside of a name, and finish.
Steps scan(dsmake_scan* scan, std::vector<std::string>& notes) {
    constexpr std::string_view TEXT = "Cark:\nBOB of K\xC3\xB6ln, ann o'neil (5, X), ann 4111-1111";
    constexpr std::size_t CUT = 14;
    return {dsmake_scan_start(scan, note, &notes), dsmake_scan_feed(scan, TEXT.data(), CUT),
            dsmake_scan_feed(scan, TEXT.data() + CUT, TEXT.size() - CUT), dsmake_scan_finish(scan)};
}

} // namespace

TEST_F(Dsmake_h, TellsWhatIsInTheFile) {
    const Set set = open(0);
    ASSERT_EQ(dsmake_field_count(set.get()), 3U);
    EXPECT_STREQ(dsmake_field_name(set.get(), 2), "Place");
    EXPECT_STREQ(dsmake_field_type(set.get(), 1), "CCNUMBER");
    EXPECT_STREQ(dsmake_field_name(set.get(), 3), "");
    ASSERT_EQ(dsmake_key_count(set.get()), 2U);
    EXPECT_STREQ(dsmake_key_name(set.get(), 1), "Card");
    EXPECT_EQ(dsmake_key_field(set.get(), 1), 1);
    EXPECT_EQ(dsmake_key_field(set.get(), 2), -1);
    EXPECT_EQ(dsmake_record_count(set.get()), 3U);
}

TEST_F(Dsmake_h, FindsManyAtOnce) {
    const Set set = open(0);
    const auto both = offsets_of(set.get(), dsmake_find(set.get(), "Name", "ANN O'NEIL"));
    ASSERT_EQ(both.size(), 2U);
    const std::array<dsmake_text, 4> values{
        {{"bobby", 3}, {nullptr, 7}, {"x", 1}, {"Ann O'Neil", 10}}};
    Numbers counts(values.size());
    const auto found = offsets_of(
        set.get(), dsmake_find_many(set.get(), 0, values.data(), values.size(), counts.data()));
    EXPECT_EQ(counts, (Numbers{1, 0, 0, 2}));
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(std::vector(found.begin() + 1, found.end()), both);
    EXPECT_EQ(offsets_of(set.get(), dsmake_find_text(set.get(), 1, "41\0", 3)).size(), 0U);
    EXPECT_EQ(dsmake_find_text(set.get(), 2, "X", 1), -1);
    EXPECT_EQ(dsmake_code(set.get()), DSMAKE_NO_SUCH_KEY);
}

TEST_F(Dsmake_h, ReadsRecordsWhileOthersAreLookedUp) {
    const Set set = open();
    const auto first = dsmake_first_record(set.get());
    const Numbers record = record_of(set.get());
    EXPECT_EQ(dsmake_find(set.get(), "Card", "5"), 1);
    const std::int64_t third = *dsmake_offsets(set.get());
    EXPECT_EQ(dsmake_read_record(set.get(), first), 0);
    EXPECT_EQ(record_of(set.get()), record);
    EXPECT_GT(dsmake_next_record(set.get()), first);
    EXPECT_EQ(dsmake_next_record(set.get()), third);
    EXPECT_EQ(dsmake_next_record(set.get()), 0);
    EXPECT_EQ(dsmake_record_values(set.get(), 0, nullptr), -1) << "there is none any more";
    EXPECT_EQ(dsmake_read_record(set.get(), 3), -1);
    EXPECT_EQ(dsmake_code(set.get()), DSMAKE_BAD_ARGUMENT);
}

// Marks, white space of other scripts, bytes that are no UTF-8, and nothing at all.
TEST_F(Dsmake_h, TokenValuesOfLinesAreThoseOfRecords) {
    const std::vector<std::string> lines{
        "Ann O'Neil\t4111 1111\tCork", "\xC2\xA0 SMITH\xE2\x80\x83\t\xEF\xBB\xBF 4-1\t",
        "Zo\xEB\xEF\xBB\xBF\xEF\xBB\xEF\xBB\xBF\xBF x\t1.2-3\t\xC3\x85 A\xCC\x8A",
        "\xE2\x80\x8B\t-\t "};
    std::string input;
    for (const std::string& line : lines) {
        input += line + '\n';
    }
    place_.remove("out");
    place_.write("in", input);
    ASSERT_EQ(place_.run(build_arguments(std::string(SCHEMA), {"Name"})).exit_status, 0);
    const Set set = open();
    const std::array<const char*, 3> types{"simplenc", "CCNUMBER", "Simple"};
    const std::unique_ptr<dsmake_tokeniser, Close> tokeniser(
        dsmake_tokeniser_open(types.data(), types.size()));
    std::int64_t record = dsmake_first_record(set.get());
    for (const std::string& line : lines) {
        const std::uint64_t* numbers = nullptr;
        const auto count = dsmake_line_values(tokeniser.get(), line.data(), line.size(), &numbers);
        ASSERT_GE(count, 3) << line;
        ASSERT_GT(record, 0) << line;
        EXPECT_EQ(Numbers(numbers, numbers + count), record_of(set.get())) << line;
        record = dsmake_next_record(set.get());
    }
    EXPECT_EQ(dsmake_line_values(tokeniser.get(), "a\tb", 3, nullptr), -1);
    Numbers values(2);
    EXPECT_EQ(dsmake_token_values("Simple", " Ann B\t", 7, values.data(), 1), 2);
    EXPECT_NE(values[0], 0U);
    EXPECT_EQ(values[1], 0U) << "no more than there is room for";
    EXPECT_EQ(dsmake_token_values("Unknown", "x", 1, values.data(), 1), -1);
}

TEST_F(Dsmake_h, ScansPiecesAndOutlivesTheHandle) {
    Set set = open();
    const Scan scanner(dsmake_scan_open(set.get(), DSMAKE_USUAL_LEAST, DSMAKE_ANY_DISTANCE));
    const Scan strict(dsmake_scan_open(set.get(), 3, 100));
    const Scan wrong(dsmake_scan_open(set.get(), 4, 100));
    set.reset();
    std::vector<std::string> notes;
    EXPECT_EQ(scan(scanner.get(), notes).back(), 0) << "the listener had enough";
    EXPECT_EQ(notes, (std::vector<std::string>{"2 6 BOB 2", "2 20 ann o'neil 2"}));
    notes.clear();
    EXPECT_EQ(scan(strict.get(), notes), (Steps{1, 1, 1, 1}));
    EXPECT_EQ(notes, (std::vector<std::string>{"2 20 ann o'neil 3"}));
    EXPECT_EQ(dsmake_scan_feed(strict.get(), "x", 1), -1) << "no text was begun";
    EXPECT_EQ(dsmake_scan_code(strict.get()), DSMAKE_BAD_ARGUMENT);
    notes.clear();
    EXPECT_EQ(scan(strict.get(), notes), (Steps{1, 1, 1, 1}));
    EXPECT_EQ(dsmake_scan_code(wrong.get()), DSMAKE_BAD_ARGUMENT);
    EXPECT_EQ(scan(wrong.get(), notes), (Steps{-1, -1, -1, -1}));
}

TEST_F(Dsmake_h, IsSharedByThreads) {
    const Set set = open(0);
    std::array<int, 4> good{};
    std::vector<std::thread> threads;
    for (int& count : good) {
        threads.emplace_back([&set, &count] {
            for (int i = 0; i < 50; ++i) {
                const Set own(dsmake_share(set.get()));
                const Scan scanner(dsmake_scan_open(set.get(), 3, 100));
                std::vector<std::string> notes;
                count += scan(scanner.get(), notes).back() == 1 && notes.size() == 1 &&
                                 dsmake_find(own.get(), "Name", "Ann O'Neil") == 2
                             ? 1
                             : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, (std::array{50, 50, 50, 50}));
}

// Each later call fails, and for the same reason.
TEST_F(Dsmake_h, AFailedOpeningKeepsItsMessage) {
    const Set none(dsmake_open("none", 0));
    const std::string message = dsmake_message(none.get());
    EXPECT_EQ(message.rfind("none: 0xC2012515: ", 0), 0U);
    const Set shared(dsmake_share(none.get()));
    EXPECT_NE(dsmake_message(shared.get()), dsmake_message(none.get())) << "which may be closed";
    for (dsmake_data_set* set : {none.get(), shared.get()}) {
        EXPECT_EQ(dsmake_find(set, "Name", "x"), -1);
        EXPECT_EQ(dsmake_first_record(set), -1);
        EXPECT_EQ(dsmake_field_count(set), 0U);
        EXPECT_EQ(dsmake_message(set), message);
        EXPECT_EQ(dsmake_code(set), DSMAKE_NOT_OPENED);
    }
    const Scan scanner(dsmake_scan_open(none.get(), 0, 0));
    EXPECT_EQ(dsmake_scan_start(scanner.get(), nullptr, nullptr), -1);
    EXPECT_EQ(dsmake_scan_message(scanner.get()), message);
    const Set flags(dsmake_open(place_.path("out").c_str(), 2));
    EXPECT_EQ(dsmake_code(flags.get()), DSMAKE_BAD_ARGUMENT);
    EXPECT_EQ(dsmake_find(flags.get(), "Name", "Bob"), -1);
}

TEST_F(Dsmake_h, NullIsHarmless) {
    EXPECT_EQ(dsmake_code(nullptr), DSMAKE_NO_MEMORY);
    EXPECT_EQ(dsmake_share(nullptr), nullptr);
    EXPECT_EQ(dsmake_find_many(nullptr, 0, nullptr, 1, nullptr), -1);
    EXPECT_EQ(dsmake_next_record(nullptr) + dsmake_read_record(nullptr, 9), -2);
    EXPECT_EQ(dsmake_scan_open(nullptr, 1, 1), nullptr);
    EXPECT_EQ(dsmake_scan_finish(nullptr), -1);
    EXPECT_EQ(dsmake_line_values(nullptr, nullptr, 1, nullptr), -1);
    EXPECT_EQ(dsmake_token_values(nullptr, nullptr, 1, nullptr, 1), -1);
    EXPECT_EQ(dsmake_tokeniser_open(nullptr, 1), nullptr);
    EXPECT_EQ(dsmake_code(Set(dsmake_open(nullptr, 0)).get()), DSMAKE_NOT_OPENED);
    const Set set = open();
    EXPECT_EQ(dsmake_find(set.get(), nullptr, "x"), -1);
    EXPECT_EQ(dsmake_code(set.get()), DSMAKE_NO_SUCH_KEY);
    EXPECT_EQ(dsmake_find(set.get(), "Name", nullptr), 0);
    EXPECT_EQ(dsmake_find_many(set.get(), 0, nullptr, 1, nullptr), -1);
    const Scan scanner(dsmake_scan_open(set.get(), 1, 0));
    EXPECT_EQ(dsmake_scan_start(scanner.get(), nullptr, nullptr), 1);
    EXPECT_EQ(dsmake_scan_feed(scanner.get(), nullptr, 5), 1);
    EXPECT_EQ(dsmake_scan_feed(scanner.get(), "Bob", 3), 1);
    EXPECT_EQ(dsmake_scan_finish(scanner.get()), 1);
}

} // namespace test
