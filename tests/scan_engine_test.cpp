#include "data_set_files.hpp"
#include "scan_cases.hpp"
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

class Listener final : public tla::Tla_scan_listener {
public:
    explicit Listener(std::string_view text) : text_(text) {}
    bool take(const tla::Tla_scan_find& find) override {
        finds.push_back({find.line,
                         find.place,
                         find.length,
                         find.key,
                         static_cast<std::uint64_t>(find.record),
                         {find.fields.begin(), find.fields.end()}});
        EXPECT_EQ(find.text, text_.substr(find.place, find.length));
        EXPECT_TRUE(find.text_is_whole);
        return true;
    }
    Finds finds;

private:
    std::string_view text_;
};

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

// DSMAKE_SCAN_CASES asks for more of them, DSMAKE_SCAN_SEED for others.
std::size_t number_from(const char* name, std::size_t otherwise) {
    const char* const value = std::getenv(name);
    return value == nullptr ? otherwise : std::strtoull(value, nullptr, 10);
}

TEST(Scan, FindsWhatAModelFinds) {
    const std::size_t cases = number_from("DSMAKE_SCAN_CASES", 1000);
    const auto seed = static_cast<unsigned>(number_from("DSMAKE_SCAN_SEED", 17));
    std::size_t with_finds = 0;
    for (std::size_t number = 0; number < cases; ++number) {
        Scan_case_maker maker(seed * 1000003U + static_cast<unsigned>(number));
        const Scan_case made = maker.make();
        if (begins_with_mark(made.text)) continue;
        const Small_reader file(made.file);
        const auto keys = places_of(file, made.key_names);
        const Finds expected =
            Scan_model(file, keys, made.text).finds(made.least, made.within);
        with_finds += expected.empty() ? 0 : 1;
        const auto index = index_of(made.file, made.key_names);
        for (const std::size_t window : {std::size_t{1} << 18U, std::size_t{1}}) {
            tla::Tla_text_scan engine(*index, {made.least, made.within, false, window});
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

} // namespace
} // namespace test
