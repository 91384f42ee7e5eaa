#include "records/values/tla_formatted_text.hpp"
#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_normalize.hpp"
#include "scl/text/scl_utf.hpp"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr std::string_view TYPES[] = {"Simple", "SimpleNC", "CCNUMBER"};

std::u16string form_of(std::u16string_view text, std::string_view type) {
    std::u16string form;
    const auto formatter = tla::tla_create_formatter(tla::tla_formatter_type_id_from_name(type));
    formatter->format(text, form, false);
    return form;
}

// What joins, composes, grows, shrinks, is removed, looks at its neighbours, or is well formed only
// with another; and whatever else there is.
char32_t any_character(std::mt19937& random) {
    constexpr char32_t ODD[] = {'e',    'J',    'I',    ' ',    '-',     '\n',    0x301,  0x323,
                                0x344,  0x30C,  0x307,  0x3A3,  0x3A3,   0x130,   0xB7,   0x1100,
                                0x1161, 0x11A8, 0xAC00, 0x3099, 0x304B,  0x9BE,   0x9C7,  0x958,
                                0xFB1D, 0x2ADC, 0x212A, 0x2000, 0x1D15E, 0x1D165, 0x10400};
    if (random() % 4 != 0) return ODD[random() % std::size(ODD)];
    const auto character =
        static_cast<char32_t>(random() % (random() % 3 == 0 ? 0x110000 : 0x3100));
    return scl::scl_is_surrogate(character) ? U'x' : character;
}

std::u16string any_text(std::mt19937& random) {
    std::u16string text;
    const bool has_surrogates = random() % 8 == 0;
    for (std::size_t left = random() % 60; left > 0; --left) {
        char16_t units[2];
        const char32_t character = any_character(random);
        const std::size_t repeats = random() % 50 == 0 ? 80 : 1; // past a block
        for (std::size_t i = 0; i < repeats; ++i) {
            text.append(units, scl::scl_utf16_put(units, character));
        }
        if (has_surrogates && random() % 20 == 0)
            text += static_cast<char16_t>(0xD800 + random() % 0x800);
        if (random() % 4 == 0) text.append(random() % 70, u"axЖ王"[random() % 4]);
    }
    return text;
}

void expect_ascending_places(const tla::Tla_formatted_text& form, std::size_t original_size) {
    std::size_t last = 0;
    for (std::size_t place = 0; place <= form.text().size(); ++place) {
        EXPECT_LE(last, form.original_offset(place));
        last = form.original_offset(place);
    }
    EXPECT_EQ(last, original_size);
}

// Where the text can be cut, the form of what is before the cut ends at a place that leads to it,
// or behind what was removed there.
void expect_places_at_cuts(const std::u16string& text, std::string_view type, std::size_t every) {
    const tla::Tla_formatted_text in_form(text, tla::tla_formatter_type_id_from_name(type));
    ASSERT_EQ(in_form.text(), form_of(text, type)) << type;
    expect_ascending_places(in_form, text.size());
    if (!scl::scl_can_normalize(text)) return;
    for (std::size_t at = 0; at < text.size(); at += scl::scl_joined_length(text, at)) {
        if (at % every != 0) continue; // few are enough of each text
        const std::size_t place = form_of(std::u16string_view(text).substr(0, at), type).size();
        const std::size_t removed = type == "CCNUMBER" ? text.find_first_not_of(u" -", at) : at;
        EXPECT_GE(in_form.original_offset(place), at) << type;
        EXPECT_LE(in_form.original_offset(place), std::min(removed, text.size())) << type << at;
    }
}

TEST(Text_in_form, IsWhatTheFormatterMakesAndLeadsBack) {
    std::mt19937 random(12); // NOLINT: the same numbers each time
    for (int round = 0; round < 1000; ++round) {
        const std::u16string text = any_text(random);
        for (const std::string_view type : TYPES) {
            expect_places_at_cuts(text, type, 1 + random() % 100);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(Text_in_form, LeadsIntoPieces) {
    const auto place = [](std::u16string_view text, std::string_view type, std::size_t at) {
        return tla::Tla_formatted_text(text, tla::tla_formatter_type_id_from_name(type))
            .original_offset(at);
    };
    EXPECT_EQ(place(u"\n\u0344x", "Simple", 1), 1U) << "a mark on nothing is a word of its own";
    EXPECT_EQ(place(u"\u2ADC\u1161", "Simple", 2), 1U) << "the vowel, behind what grew";
    EXPECT_EQ(place(u"İİx\xD800", "SimpleNC", 4), 2U) << "lone surrogate: lower-cased all the same";
    EXPECT_EQ(place(u"e\u0301İ\xD800x", "SimpleNC", 5), 4U) << "but nothing composed";
    EXPECT_EQ(tla::Tla_formatted_text(u"a", {}).text(), u"");
}

} // namespace
