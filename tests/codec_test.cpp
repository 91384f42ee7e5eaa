#include "piecewise_buffer.hpp"
#include "scl/scl_crc64.hpp"
#include "token_support.hpp"
#include "txt/txt_tokeniser.hpp"
#include "txtdfc/dff_annotation_facet.hpp"
#include "txtdfc/txtdfc_token_reader.hpp"
#include "txtdfc/txtdfc_token_values.hpp"
#include "txtdfc/txtdfc_view_filler.hpp"

#include <gtest/gtest.h>

#include <random>

namespace {

using test::Bench;
using test::Piece;
using txt::Txt_text_form;
using Operation = txt::Txt_parse_operation;

constexpr std::uint32_t WORD = 0x1000002;

std::uint64_t crc_of(std::u16string_view text) {
    return scl::Scl_crc64::calculate(text.data(), text.size() * 2, scl::Scl_crc64::INITIAL);
}

std::string message_of(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::logic_error& error) {
        return std::string("logic: ") + error.what();
    } catch (const std::runtime_error& error) {
        return std::string("runtime: ") + error.what();
    }
    return "nothing thrown";
}

TEST(Codec, TokenAnswersForItsText) {
    Bench bench;
    const txt::Txt_physical_token* const token =
        bench.attach(u"e\u0301te\u0301\t\U0001F600")->cfront();
    const auto expect_text = [&](Txt_text_form form, std::u16string_view text) {
        EXPECT_EQ(token->crc(form), crc_of(text));
        EXPECT_EQ(token->length(form), text.size());
        EXPECT_EQ(std::u16string(token->text(form)), text);
    };
    expect_text(Txt_text_form::whole, u"e\u0301te\u0301");
    expect_text(Txt_text_form::visible, u"ete");
    EXPECT_EQ(std::u16string(token->trailer_text()), u"\t");
    EXPECT_EQ(token->next()->length(Txt_text_form::visible), 1U);
    EXPECT_EQ(token->next()->previous(), token);
    EXPECT_EQ(&token->view(), bench.view());
    EXPECT_EQ(token->next()->next(), nullptr);
}

TEST(Codec, ValueCoversEveryLengthAndAZeroInside) {
    Bench bench;
    const std::u16string zero(u"\0\u0301", 2);
    EXPECT_EQ(bench.attach(zero)->cfront()->crc(Txt_text_form::whole), crc_of(zero));
    for (std::size_t length = 1; length < 600; length += 7) {
        const std::u16string text(length, u'x');
        EXPECT_EQ(bench.attach(text)->cfront()->crc(Txt_text_form::whole), crc_of(text));
    }
    const auto* const token = dynamic_cast<const txtdfc::Txtdfc_physical_token*>(
        bench.attach(std::u16string(40000, u'x'))->cfront());
    EXPECT_EQ(token->content_length(), 80000 - 65536);
}

TEST(Codec, ByteOrderMarkIsNotText) {
    EXPECT_EQ(test::pieces_of(u"\uFEFFab\uFEFF"),
              (std::vector<Piece>{{u"ab\uFEFF", u"", WORD, 2}}));
    EXPECT_EQ(Bench().attach(u"\uFEFF"), nullptr);
    Bench asking(true);
    ASSERT_NE(asking.attach(u"\uFEFF"), nullptr);
    EXPECT_EQ(asking.view()->cfront(), nullptr);
}

TEST(Codec, OneViewForEachAttachment) {
    Bench bench;
    EXPECT_EQ(bench.view(), nullptr);
    bench.status.push(scl::SCL_STATUS_READ_FAILED);
    txtdfc::Txtdfc_text_view* const view = bench.attach(u"one two");
    EXPECT_EQ(bench.status.value(), 0U);
    EXPECT_EQ(bench.view(), view);
    unsigned cursor = 0;
    EXPECT_EQ(bench.codec.text_view(1, cursor), nullptr);
    EXPECT_EQ(cursor, 0xFFFFFFFF);
    EXPECT_EQ(bench.codec.text_view(0, cursor), nullptr);
    EXPECT_EQ(test::pieces_of(bench.attach(u"three")),
              (std::vector<Piece>{{u"three", u"", WORD, 0}}));
    EXPECT_EQ(bench.attach(u""), nullptr);
}

TEST(Codec, GivesOnlyTheFacetsGranted) {
    const dfc::Dfc_facet_set text_only{dff::DFF_TEXT_FACET_ID};
    const dfc::Dfc_facet_set neither;
    txtdfc::Txtdfc_format_codec granted(&text_only, nullptr, nullptr, false);
    txtdfc::Txtdfc_format_codec refused(&neither, nullptr, nullptr, false);
    EXPECT_EQ(granted.query_facet(dff::DFF_TEXT_FACET_ID)->facet_id(), dff::DFF_TEXT_FACET_ID);
    EXPECT_EQ(granted.query_facet(dff::DFF_ANNOTATION_FACET_ID), nullptr);
    EXPECT_EQ(refused.query_facet(dff::DFF_TEXT_FACET_ID), nullptr);
}

TEST(Codec, TextsOfATableAreShared) {
    txt::Txt_text_table table;
    Bench bench(false, &table);
    const txt::Txt_physical_token* const token = bench.attach(u"same other same")->cfront();
    const txt::Txt_physical_token* const third = token->next()->next();
    EXPECT_EQ(third->text(Txt_text_form::whole), token->text(Txt_text_form::whole));
    EXPECT_EQ(table.lookup(u"other"), token->next()->text_entry());
    EXPECT_EQ(table.lookup(u"none").data(), nullptr);
    EXPECT_EQ(token->trailer_entry(), u" ");
}

// The status of attaching content that reports or throws when it is asked for its size.
scl::Scl_status attach_fault(std::function<void(scl::Scl_status&)> fault) {
    const scl::Scl_wstring_buffer whole(u"x");
    test::Piecewise_buffer content(whole);
    content.size_fault = std::move(fault);
    Bench bench;
    bench.codec.attach(&content, bench.status);
    return bench.status;
}

TEST(Codec, AttachTurnsExceptionsIntoCodes) {
    EXPECT_EQ(attach_fault([](scl::Scl_status& status) { status.push(0xC2000013); }).value(),
              0xC2000013);
    EXPECT_EQ(attach_fault([](scl::Scl_status&) { throw std::bad_alloc(); }).value(), 0xC2000001);
    EXPECT_EQ(attach_fault([](scl::Scl_status&) { throw 1; }).value(), 0xC200006A);
    const scl::Scl_status status =
        attach_fault([](scl::Scl_status&) { throw std::runtime_error("gone"); });
    EXPECT_EQ(status.value(), 0xC200006B);
    EXPECT_EQ(status.entries().back().argument->text(), u"gone");
}

TEST(Codec, ViewSaysWhyThereIsNone) {
    Bench bench(true);
    EXPECT_EQ(message_of([&] { bench.view(); }),
              "logic: Txtdfc_format_codec::create_text_view() - no content attached");
    const std::u16string text(100000, u'x');
    const scl::Scl_wstring_buffer whole(text);
    test::Piecewise_buffer content(whole, 150000);
    bench.codec.attach(&content, bench.status);
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(message_of([&] { bench.view(); }),
                  "runtime: Txtdfc_format_codec::create_text_view() - tokenisation failed");
    }
    content.fails_from = test::Piecewise_buffer::NEVER;
    EXPECT_EQ(test::pieces_of(bench.view()), (std::vector<Piece>{{text, u"", WORD, 0}}));
}

TEST(Codec, ContentReadInWindowsHasTheSameTokens) {
    std::mt19937 random(7);
    const std::u16string alphabet = u"ab1_.'\",: \n\u0308\u200D\u05D0\u231A";
    std::u16string text;
    for (int i = 0; i < 200000; ++i) {
        text += random() % 50 == 0 ? u"\U0001F600" : std::u16string(1, alphabet[random() % 16]);
    }
    const scl::Scl_wstring_buffer whole(text);
    const test::Piecewise_buffer content(whole);
    Bench bench;
    EXPECT_EQ(test::pieces_of(bench.attach(content)), test::pieces_of(text));
}

TEST(TokenValues, AreThoseOfTheView) {
    std::mt19937 random(8);
    const std::u16string alphabet =
        u"abcdeXYZ12_.'\", \n\u0308\u200D\u05D0\u231A\uFEFF\u000B\u3000";
    for (int round = 0; round < 20000; ++round) {
        std::u16string text;
        for (std::size_t length = random() % 24; length > 0; --length) {
            text += alphabet[random() % alphabet.size()];
        }
        if (round % 50 == 0) text.insert(0, 600, u'w');
        Bench bench;
        const txtdfc::Txtdfc_text_view* const view = bench.attach(text);
        std::vector<std::uint64_t> expected;
        const txt::Txt_physical_token* token = view != nullptr ? view->cfront() : nullptr;
        for (; token != nullptr; token = token->next()) {
            expected.push_back(token->crc(Txt_text_form::whole));
        }
        std::vector<std::uint64_t> values = {99};
        ASSERT_EQ(txtdfc::txtdfc_token_values(text, values), view != nullptr);
        ASSERT_EQ(values, expected) << testing::PrintToString(text);
    }
}

TEST(TokenPool, LimitCountsAllTokensEverMade) {
    Bench bench(false, nullptr, 3);
    EXPECT_EQ(test::pieces_of(bench.attach(std::u16string(3000, u'!'))).size(), 3000U);
    EXPECT_EQ(message_of([&] { bench.attach(u"!"); }),
              "runtime: Too many tokens are required to tokenise the text (over 3000).  "
              "Tokenisation has failed.");
    EXPECT_EQ(txtdfc::Txtdfc_token_pool().limit(), 15000000U);
}

// Answers each question with the next operation of a list.
class Scripted_tokeniser {
public:
    explicit Scripted_tokeniser(std::vector<unsigned> script) : script_(std::move(script)) {}

    std::size_t run(std::span<const std::byte> /*units*/, txt::Txt_text_store& /*text*/,
                    std::uint32_t& /*type*/, Operation& /*operation*/) {
        return 0;
    }
    void process(char32_t character, txt::Txt_text_store& text, std::uint32_t& /*type*/,
                 Operation& operation) {
        operation = next();
        if (operation == Operation::start) text.clear();
        if (operation <= Operation::go_on) text.append(character);
    }
    void breakpoint(txt::Txt_text_store& /*text*/, std::uint32_t& /*type*/, Operation& operation) {
        operation = next();
    }

private:
    Operation next() { return static_cast<Operation>(script_.at(at_++)); }

    std::vector<unsigned> script_;
    std::size_t at_ = 0;
};

// What a tokeniser of one's own makes of a text.
template <typename Tokeniser>
std::vector<Piece> build_with(Tokeniser& tokeniser, const std::u16string& text) {
    Bench bench;
    const scl::Scl_wstring_buffer content(text);
    cerc::Cerc_utf16_reader reader;
    reader.attach(content, bench.status, false);
    txtdfc::Txtdfc_text_view view(bench.codec, nullptr);
    view.start_content();
    txtdfc::Txtdfc_view_filler filler(view, bench.pool);
    txtdfc::Txtdfc_token_reader(reader, tokeniser, view.text_store(), filler)
        .read_all(bench.status);
    view.end_content();
    return test::pieces_of(&view);
}

std::vector<Piece> build_by_script(std::vector<unsigned> script) {
    Scripted_tokeniser tokeniser(std::move(script));
    return build_with(tokeniser, u"ab");
}

TEST(ViewBuilder, RefusesATokeniserThatBreaksItsContract) {
    const std::string fault = "logic: Txtdfc_format_codec::create_text_view() - ";
    for (const std::vector<unsigned>& script :
         std::vector<std::vector<unsigned>>{{3}, {0, 1, 3}, {0, 2, 4, 3}, {0, 2, 1, 3, 3}}) {
        EXPECT_EQ(message_of([&] { build_by_script(script); }),
                  fault + "haven't been checkpointed");
    }
    for (const unsigned operation : {0U, 1U, 2U}) {
        EXPECT_EQ(message_of([=] {
                      build_by_script({0, 1, operation});
                  }),
                  fault + "unexpected operation");
    }
}

// Counts what it is asked.
class Counting_tokeniser {
public:
    template <typename... Arguments>
    std::size_t run(Arguments&&... arguments) {
        ++questions;
        return tokeniser_.run(arguments...);
    }
    template <typename... Arguments>
    void process(Arguments&&... arguments) {
        ++questions;
        tokeniser_.process(arguments...);
    }
    template <typename... Arguments>
    void breakpoint(Arguments&&... arguments) {
        tokeniser_.breakpoint(arguments...);
    }

    std::size_t questions = 0;

private:
    txt::Txt_tokeniser tokeniser_;
};

TEST(ViewBuilder, TakesLinearTimeForAnyText) {
    constexpr std::size_t UNITS = 200000;
    const std::u16string marks(UNITS, u'\u0308');
    std::vector<std::u16string> texts = {u"a'" + marks, u"a'" + marks + u"!", u"1," + marks + u"a"};
    for (const std::u16string unit :
         {u"a'", u"a'a''", u"'", u"a.\u0308\u0308", u"\u05D0\"", u" \u0308"}) {
        std::u16string& text = texts.emplace_back();
        while (text.size() < UNITS) {
            text += unit;
        }
    }
    for (const std::u16string& text : texts) {
        Counting_tokeniser tokeniser;
        std::size_t length = 0;
        for (const Piece& piece : build_with(tokeniser, text)) {
            length += piece.text.size() + piece.trailer.size();
        }
        EXPECT_EQ(length, text.size());
        EXPECT_LT(tokeniser.questions, 7 * text.size());
    }
}

} // namespace
