#include "data_set_files.hpp"
#include "scan_cases.hpp"
#include "scan_listener.hpp"
#include "scan_model.hpp"
#include "tla/scan/tla_text_scan.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>

namespace test {

std::ostream& operator<<(std::ostream& out, const Scan_model::Find& find) {
    out << "line " << find.line << " place " << find.place << '+' << find.length << " key "
        << find.key << " record " << find.record << " fields";
    for (const std::size_t field : find.fields) {
        out << ' ' << field;
    }
    return out;
}

namespace {

using Find = Scan_model::Find;
using Finds = std::vector<Find>;

class Listener final : public Finds_listener {
public:
    explicit Listener(std::string_view text) : text_(text) {}
    bool take(const tla::Tla_scan_find& find) override {
        EXPECT_EQ(find.text, text_.substr(find.place, find.length));
        EXPECT_TRUE(find.text_is_whole);
        return Finds_listener::take(find);
    }

private:
    std::string_view text_;
};

// The file must outlive it.
std::unique_ptr<const tla::Tla_scan_index> index_of(const std::string& file,
                                                    const std::vector<std::u16string>& keys = {}) {
    scl::Scl_status status;
    auto index = tla::Tla_scan_index::over(std::as_bytes(std::span(file)), u"file", keys, status);
    EXPECT_TRUE(status.ok());
    return index;
}

// `cut()` is how many bytes the next piece has.
template <typename Cut>
Finds scan(tla::Tla_text_scan& scan, std::string_view text, Cut cut) {
    Listener listener(text);
    scan.start(listener);
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t size = std::min(rest.size(), cut());
        EXPECT_TRUE(scan.feed(std::as_bytes(std::span(rest.substr(0, size)))));
        rest.remove_prefix(size);
    }
    EXPECT_TRUE(scan.finish());
    return listener.finds;
}

Finds scan_at_once(tla::Tla_text_scan& engine, std::string_view text) {
    return scan(engine, text, [&text] { return text.size(); });
}

std::vector<std::size_t> places_of(const Small_reader& file,
                                   const std::vector<std::u16string>& names) {
    if (names.empty()) return Scan_model::keys_of(file);
    std::vector<std::size_t> places;
    for (const std::u16string& name : names) {
        const auto place = static_cast<std::size_t>(name.back() - u'0');
        if (std::ranges::find(places, place) == places.end()) places.push_back(place);
    }
    return places;
}

// A text of a mark or of two bytes that look like one is not for the model.
bool begins_with_mark(std::string_view text) {
    return text.starts_with("\xEF\xBB\xBF") || text.starts_with("\xFF\xFE") ||
           text.starts_with("\xFE\xFF");
}

// DSMAKE_SCAN_CASES asks for more of them, DSMAKE_SCAN_SEED and DSMAKE_SCAN_FIRST for others.
std::size_t number_from(const char* name, std::size_t otherwise) {
    const char* const value = std::getenv(name);
    return value == nullptr ? otherwise : std::strtoull(value, nullptr, 10);
}

TEST(Scan, FindsWhatAModelFinds) {
    const std::size_t cases = number_from("DSMAKE_SCAN_CASES", 250);
    const auto seed = static_cast<unsigned>(number_from("DSMAKE_SCAN_SEED", 17));
    std::size_t with_finds = 0;
    const std::size_t first = number_from("DSMAKE_SCAN_FIRST", 0);
    for (std::size_t number = first; number < first + cases; ++number) {
        Scan_case_maker maker(seed * 1000003U + static_cast<unsigned>(number));
        const Scan_case made = maker.make();
        if (begins_with_mark(made.text)) continue;
        const Small_reader file(made.file);
        const auto keys = places_of(file, made.key_names);
        const Finds expected = Scan_model(file, keys, made.text).finds(made.least, made.within);
        with_finds += expected.empty() ? 0 : 1;
        const auto index = index_of(made.file, made.key_names);
        // First as a short text, without tables; then with them, at once and in small windows.
        for (const std::size_t window :
             {std::size_t{1} << 19U, std::size_t{1} << 18U, std::size_t{1}}) {
            const std::size_t short_text = window > std::size_t{1} << 18U ? made.text.size() : 0;
            tla::Tla_text_scan engine(*index, {made.least, made.within, false, short_text, window});
            const auto cut = [&] { return 1 + maker.below(window == 1 ? 40 : 4000); };
            ASSERT_EQ(scan(engine, made.text, cut), expected)
                << "case " << number << " window " << window << " least " << made.least
                << " within " << made.within.value_or(999999) << '\n'
                << made.told << "\ntext:\n"
                << made.text << '\n'
                << ::testing::PrintToString(made.text);
        }
    }
    EXPECT_GT(with_finds, cases / 4) << "there is something to compare";
}

// Anna Smith and her number, and somebody of another name.
std::string small_file() {
    return version2("First,Simple;Last,SimpleNC;Card,CCNUMBER", {"Last"},
                    {{"Anna", "Smith", "4111111111111111"}, {"Zoë", "O'Brien", "12-34"}});
}

Finds finds_in(const std::string& file, std::string_view text, tla::Tla_scan_options options = {}) {
    const auto index = index_of(file);
    tla::Tla_text_scan engine(*index, options);
    return scan_at_once(engine, text);
}

// Wherever a text is cut, between the bytes of a character too, the same is found.
TEST(Scan, MakesNothingOfPieces) {
    const std::string text = "\xEF\xBB\xBF"
                             "Anna\r\n\u201ESMITH\u2019s\u201C, 4111 1111\n1111 1111; "
                             "Zoe\u0308 O\u2019Brien \xFF 12\u2010"
                             "34\n";
    const std::string file = small_file();
    const auto index = index_of(file);
    const Finds whole = finds_in(file, text);
    ASSERT_EQ(whole.size(), 2U);
    EXPECT_EQ(whole[0].fields, (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(whole[1].fields, (std::vector<std::size_t>{0, 1, 2}));
    for (const std::size_t window : {1, 7, 1000}) {
        tla::Tla_text_scan engine(*index, {.window = window});
        for (std::size_t size = 1; size <= text.size(); ++size) {
            ASSERT_EQ(scan(engine, text, [size] { return size; }), whole) << size;
        }
    }
}

class Places final : public tla::Tla_scan_listener {
public:
    bool take(const tla::Tla_scan_find& find) override {
        places.push_back({find.place, find.length});
        texts.emplace_back(find.text);
        return places.size() < most;
    }
    std::vector<std::pair<std::uint64_t, std::uint64_t>> places;
    std::vector<std::string> texts;
    std::size_t most = 100;
};

std::string utf16(std::u16string_view text, bool is_little) {
    std::string bytes;
    for (const char16_t unit : text) {
        const auto low = static_cast<char>(unit & 0xFF);
        const auto high = static_cast<char>(unit >> 8);
        bytes += is_little ? std::string{low, high} : std::string{high, low};
    }
    return bytes;
}

// Places are those of the text's UTF-8, without its mark; a lone half of a pair is U+FFFD there.
TEST(Scan, ReadsUtf16BehindItsMark) {
    const std::u16string text = u"\uFEFF\U0001F600 \xD800 Zoë O’Brien";
    const std::string file = small_file();
    const auto index = index_of(file);
    tla::Tla_text_scan engine(*index);
    for (const bool is_little : {true, false}) {
        for (const std::size_t size : {1, 3, 100}) {
            Places found;
            engine.start(found);
            const std::string bytes = utf16(text, is_little) + (size == 3 ? "x" : "");
            for (std::size_t at = 0; at < bytes.size(); at += size) {
                engine.feed(
                    std::as_bytes(std::span(bytes).subspan(at, std::min(size, bytes.size() - at))));
            }
            engine.finish();
            ASSERT_EQ(found.places.size(), 1U);
            EXPECT_EQ(found.places[0], std::pair(std::uint64_t{14}, std::uint64_t{9}));
            EXPECT_EQ(found.texts[0], "O’Brien");
        }
    }
}

// A mark in front counts for the places of a text in UTF-8, but not when it was converted; then
// nothing is taken for a mark of UTF-16 either.
TEST(Scan, DropsOneMark) {
    const std::string file = small_file();
    const auto index = index_of(file);
    const auto place_in = [&](std::string_view text, bool is_converted) {
        tla::Tla_text_scan engine(*index, {.is_converted = is_converted});
        Places found;
        engine.start(found);
        engine.feed(std::as_bytes(std::span(text)));
        engine.finish();
        return found.places.empty() ? 1000 : found.places.front().first;
    };
    const std::string names = "Anna Smith";
    EXPECT_EQ(place_in(names, false), 5U);
    EXPECT_EQ(place_in("\xEF\xBB\xBF" + names, false), 8U);
    EXPECT_EQ(place_in("\xEF\xBB\xBF" + names, true), 5U);
    EXPECT_EQ(place_in("\xFF\xFE " + names, false), 1000U);
    EXPECT_EQ(place_in("\xFF\xFE " + names, true), 8U);
    EXPECT_EQ(place_in("", false), 1000U);
    EXPECT_EQ(place_in("\xFF", false), 1000U);
}

TEST(Scan, EndsWhenItsListenerWantsNoMore) {
    const std::string file = version2("A,Simple", {"A"}, {{"a"}, {"b"}, {"c"}});
    const auto index = index_of(file);
    tla::Tla_text_scan engine(*index, {.window = 4});
    Places found;
    found.most = 2;
    engine.start(found);
    const std::string text = "a b\nc a\n";
    EXPECT_FALSE(engine.feed(std::as_bytes(std::span(text))) && engine.finish());
    EXPECT_FALSE(engine.feed(std::as_bytes(std::span(text))));
    EXPECT_FALSE(engine.finish());
    EXPECT_EQ(found.places.size(), 2U);
    Places again;
    engine.start(again);
    engine.feed(std::as_bytes(std::span(text)));
    EXPECT_TRUE(engine.finish());
    EXPECT_EQ(again.places.size(), 3U) << "the next text is found as ever";
}

// Tables from which equal records were left out hide neither the next table's name nor a record.
TEST(Scan, FindsEqualRecordsAndAllKeys) {
    const std::string file =
        version2("A,Simple;B,Simple;C,Simple", {"B", "A", "C"},
                 {{"a", "b", "c"}, {"a", "b", "c"}, {"a", "b", "c"}, {"x", "y", "z"}});
    const auto index = index_of(file);
    EXPECT_EQ(std::vector(index->keys().begin(), index->keys().end()),
              (std::vector<std::size_t>{1, 0, 2}));
    EXPECT_EQ(finds_in(file, "a b c x").size(), 3U);
    scl::Scl_status status;
    const std::vector<std::u16string> names = {u"C", u"D"};
    EXPECT_EQ(tla::Tla_scan_index::over(std::as_bytes(std::span(file)), u"f", names, status),
              nullptr);
    EXPECT_EQ(status.value(), 0xC2012511U);
    EXPECT_EQ(argument_of(status), "D");
}

// Whatever stands in a file: a status, or an index that can be used.
TEST(Scan, RefusesFilesThatAreCut) {
    const std::string file = small_file();
    for (std::size_t size = 0; size < file.size(); ++size) {
        scl::Scl_status status;
        const auto bytes = std::as_bytes(std::span(file)).first(size);
        const auto index = tla::Tla_scan_index::over(bytes, u"f", {}, status);
        EXPECT_EQ(index == nullptr, status.has_failed());
        EXPECT_EQ(index == nullptr, size < pairs_of_first_key(file)) << size;
    }
}

// Each window has one word that goes on for ever, or words without a line's end.
TEST(Scan, TakesLongTextsInLittleMemory) {
    std::string text = std::string(1'000'000, 'x') + " Anna Smith ";
    for (int i = 0; i < 200'000; ++i) {
        text += "Smith, ";
    }
    text += std::string(300'000, '-') + "Zoë O'Brien" + std::string(300'000, '.');
    for (int i = 0; i < 100'000; ++i) {
        text += "王";
    }
    const Finds finds = finds_in(small_file(), text);
    ASSERT_EQ(finds.size(), 2U);
    EXPECT_EQ(finds[0].place, 1'000'006U);
    EXPECT_EQ(finds[1].length, 7U);
}

// What a bound in the rules forbids, and what it just allows.
TEST(Scan, KeepsTheBoundsOfNumbers) {
    const std::string digits(64, '7');
    const std::string file =
        version2("N,CCNUMBER", {"N"}, {{digits}, {digits + '7'}, {"abcde1"}, {"abcd1"}});
    const std::string halves = digits.substr(32) + "        " + digits.substr(32);
    EXPECT_EQ(finds_in(file, halves).size(), 1U);
    EXPECT_EQ(finds_in(file, digits.substr(32) + "         " + digits.substr(32)).size(), 0U);
    EXPECT_EQ(finds_in(file, digits + "-7").size(), 1U) << "64 of them, and no more";
    EXPECT_EQ(finds_in(file, "abcde 1").size(), 0U);
    EXPECT_EQ(finds_in(file, "abcd\n1").size(), 1U);
    EXPECT_EQ(finds_in(file, "abcd\n\n1").size(), 0U);
}

// No more of a long occurrence than its first characters is told.
TEST(Scan, QuotesTheFirstCharacters) {
    const std::string word = "é" + std::string(200'000, 'w');
    const std::string file = version2("A,SimpleNC", {"A"}, {{word}});
    const auto index = index_of(file);
    tla::Tla_text_scan engine(*index);
    Places found;
    engine.start(found);
    engine.feed(std::as_bytes(std::span(word)));
    engine.finish();
    ASSERT_EQ(found.texts.size(), 1U);
    EXPECT_EQ(found.texts[0], word.substr(0, tla::TLA_SCAN_QUOTED_CHARACTERS + 1));
    EXPECT_EQ(found.places[0].second, word.size());
}

} // namespace
} // namespace test
