// Texts and data sets that were made to slow a scan down, to hide names or to upset it.

#include "data_set_files.hpp"
#include "scan_listener.hpp"
#include "scan_model.hpp"
#include "tla/scan/data_set_records.hpp"
#include "tla/scan/long_follower.hpp"
#include "tla/scan/tla_text_scan.hpp"
#include "txt/txt_token_types.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <random>
#include <thread>

namespace test {

namespace {

using Finds = std::vector<Scan_model::Find>;

Finds finds_in(const tla::Tla_scan_index& index, std::string_view text,
               const tla::Tla_scan_options& options = {}) {
    Finds_listener listener;
    tla::Tla_text_scan scan(index, options);
    scan.start(listener);
    scan.feed(std::as_bytes(std::span(text)));
    EXPECT_TRUE(scan.finish());
    return std::move(listener.finds);
}

// The file must outlive it.
std::unique_ptr<const tla::Tla_scan_index> index_of(const std::string& file) {
    scl::Scl_status status;
    auto index = tla::Tla_scan_index::over(std::as_bytes(std::span(file)), u"file", {}, status);
    EXPECT_TRUE(status.ok());
    return index;
}

// A word of `front` and letters that has the token value. The value is linear in the choices
// between two letters each, so these are the unknowns of 64 equations. Were it the same two letters
// throughout, a factor of the CRC's polynomial would leave out half of all values.
std::string word_of_value(std::string_view front, std::uint64_t value) {
    constexpr std::size_t LETTERS = 96;
    using Choices = std::bitset<LETTERS>;
    const std::uint64_t front_value = txt::txt_token_value(wide(front));
    const auto value_with = [&](const std::string& letters) {
        return txt::txt_extended_value(front_value, wide(letters));
    };
    std::string letters(LETTERS, 'a');
    const std::uint64_t base = value_with(letters);
    std::array<std::pair<std::uint64_t, Choices>, 64> basis{}; // by the highest bit
    const auto reduce = [&basis](std::pair<std::uint64_t, Choices>& row) {
        for (std::size_t bit = basis.size(); bit-- > 0;) {
            if ((row.first >> bit & 1U) == 0) continue;
            if (basis[bit].first == 0) return bit;
            row.first ^= basis[bit].first;
            row.second ^= basis[bit].second;
        }
        return basis.size();
    };
    for (std::size_t i = 0; i < LETTERS; ++i) {
        letters[i] = i % 2 == 0 ? 'c' : 'e';
        std::pair row(value_with(letters) ^ base, Choices().set(i));
        letters[i] = 'a';
        const std::size_t bit = reduce(row);
        if (bit < basis.size()) basis[bit] = row;
    }
    std::pair wanted(value ^ base, Choices());
    EXPECT_EQ(reduce(wanted), basis.size());
    for (std::size_t i = 0; i < LETTERS; ++i) {
        if (wanted.second[i]) letters[i] = i % 2 == 0 ? 'c' : 'e';
    }
    EXPECT_EQ(value_with(letters), value);
    return std::string(front) + letters;
}

// Of few words, so that long values begin everywhere, go on from one another and stop short; and of
// some that the readings see as several.
TEST(Scan, FindsLongValues) {
    std::mt19937 random(1);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    std::size_t found = 0;
    for (int round = 0; round < 8; ++round) {
        std::vector<std::string> words;
        const std::size_t period = 1 + below(4);
        for (std::size_t i = 0; i < 200; ++i) {
            static constexpr auto WORDS =
                std::to_array<std::string_view>({"a", "b", "a.b", "a's", "b'a", "z"});
            const bool repeats = i >= period && below(100) != 0;
            words.emplace_back(repeats ? words[i - period] : WORDS[below(round % 3 == 0 ? 6 : 2)]);
        }
        const auto part = [&words](std::size_t first, std::size_t count) {
            std::string text;
            for (std::size_t i = first; i < std::min(first + count, words.size()); ++i) {
                text += words[i] + ' ';
            }
            return text;
        };
        Rows rows;
        for (std::size_t i = 0; i < 12; ++i) {
            const std::size_t around = std::size_t{32} << below(3);
            const std::string value = part(below(100), around - 2 + below(5));
            rows.push_back({value, below(2) == 0 ? "z" : part(below(100), 1 + below(40))});
        }
        const char* const schema = round % 2 == 0 ? "A,Simple;B,Simple" : "A,SimpleNC;B,CCNUMBER";
        const std::string file = version2(schema, {"A", "B"}, rows);
        const Small_reader reader(file);
        const auto keys = Scan_model::keys_of(reader);
        const std::string text = part(0, words.size());
        const Scan_model model(reader, keys, text);
        const auto index = index_of(file);
        for (const std::size_t least : {std::size_t{1}, std::size_t{2}}) {
            for (const std::size_t within : {std::size_t{0}, std::size_t{40}}) {
                const Finds expected = model.finds(least, within);
                found += expected.size();
                for (const std::size_t window : {std::size_t{1}, std::size_t{1000}}) {
                    ASSERT_EQ(finds_in(*index, text,
                                       {.least = least,
                                        .within = within,
                                        .short_text = window,
                                        .window = window}) == expected,
                              true)
                        << "round " << round << " least " << least << " within " << within;
                }
            }
        }
    }
    EXPECT_GT(found, 100U) << "there is something to compare";
}

// Every word begins a value of 60,000 words and ends one.
TEST(Scan, TouchesALongValueSeldom) {
    const tla::Scan_hashes hashes = tla::Scan_hashes::draw();
    constexpr std::size_t LENGTH = 60'000;
    const std::vector<std::byte> values(LENGTH * sizeof(std::uint64_t));
    tla::Long_values lengths;
    lengths.add(hashes, tla::Value_kind::simple, values);
    lengths.finish(hashes);
    tla::Long_follower follower(tla::Value_kind::simple, hashes);
    std::size_t touches = 0;
    std::size_t ends = 0;
    const std::uint64_t whole =
        tla::hash_of_values(hashes, tla::Value_kind::simple, std::span(values));
    for (std::size_t word = 1; word <= 2 * LENGTH; ++word) {
        const auto found = follower.take(0, lengths);
        touches += found.size();
        ends += static_cast<std::size_t>(
            std::ranges::count(found, whole, &tla::Long_follower::Found::hash));
        if (word >= tla::Scan_hashes::SHORT_LENGTH) follower.begin({word, word}, 1, lengths);
    }
    EXPECT_EQ(ends, LENGTH + 1);
    EXPECT_LE(touches, 2 * LENGTH * 11) << "once for each time that the length doubles";
}

// Values that others can make equal, or equal modulo what sums are taken.
TEST(Scan, IsNotMisledByChosenValues) {
    const std::string file = version2("First,Simple;Last,SimpleNC", {"Last"}, {{"Anna", "Smith"}});
    const auto index = index_of(file);
    constexpr std::uint64_t MODULUS = (std::uint64_t{1} << 61U) - 1;
    const std::uint64_t smith = txt::txt_token_value(std::u16string_view(u"smith"));
    const std::uint64_t congruent = smith > MODULUS ? smith - MODULUS : smith + MODULUS;
    const Finds finds = finds_in(*index, word_of_value("", congruent) + " Anna Smith");
    ASSERT_EQ(finds.size(), 1U);
    EXPECT_EQ(finds[0].length, 5U) << "the name alone";
    const std::string equal = word_of_value(std::string(1'000'000, 'x'), smith);
    const Finds long_finds = finds_in(*index, equal + " Anna");
    ASSERT_EQ(long_finds.size(), 1U) << "values are all that a file has";
    EXPECT_EQ(long_finds[0].length, equal.size());
}

// The last table's order, that is: an earlier one shows by its order where the next begins.
TEST(Scan, TakesNoNoticeOfAKeyTablesOrder) {
    Rows rows;
    std::string text;
    for (int i = 0; i < 50; ++i) {
        const std::string number = std::to_string(i);
        rows.push_back({"Ann" + number, "Smith" + number});
        text += rows.back()[0] + ' ' + rows.back()[1] + '\n';
    }
    std::string file = version2("First,Simple;Last,SimpleNC", {"Last"}, rows);
    const Finds expected = finds_in(*index_of(file), text);
    ASSERT_EQ(expected.size(), rows.size());
    const std::size_t pairs = pairs_of_first_key(file);
    std::swap_ranges(&file[pairs + 16], &file[pairs + 32], &file[file.size() - 32]);
    EXPECT_TRUE(finds_in(*index_of(file), text) == expected);
}

// The tables are made while several ask for them.
TEST(Scan, SharesAnIndexAmongThreads) {
    Rows rows;
    std::string text;
    for (int i = 0; i < 300; ++i) {
        const std::string number = std::to_string(i);
        rows.push_back({"Ann" + number, "Smith" + std::to_string(i % 5), "4111 11 " + number});
        text += rows.back()[0] + " of " + rows.back()[1] + "; " + rows.back()[2] + '\n';
    }
    const std::string file =
        version2("First,Simple;Last,SimpleNC;Card,CCNUMBER", {"Last", "Card"}, rows);
    const Finds expected = finds_in(*index_of(file), text);
    ASSERT_EQ(expected.size(), rows.size());
    const auto index = index_of(file);
    std::array<bool, 4> are_right{};
    std::vector<std::jthread> threads;
    threads.reserve(are_right.size());
    for (bool& is_right : are_right) {
        threads.emplace_back([&] {
            is_right = true;
            for (std::size_t round = 0; round < 8; ++round) {
                is_right &= finds_in(*index, text,
                                     {.short_text = round % 2 == 0 ? text.size() : 0,
                                      .window = round + 1}) == expected;
            }
        });
    }
    threads.clear(); // waits for them
    EXPECT_EQ(std::ranges::count(are_right, true), 4);
}

} // namespace

} // namespace test
