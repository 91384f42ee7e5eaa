#include "piecewise_buffer.hpp"
#include "scl/crc/scl_crc64.hpp"
#include "token_support.hpp"
#include "txtdfc/dfc_facets.hpp"
#include "txtdfc/token_reader.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <cstdlib>
#include <new>
#include <random>

namespace {

constexpr std::size_t NO_LIMIT = ~std::size_t{0};
std::size_t allocations_left = NO_LIMIT; // after these, all of this program fail

} // namespace

// Not inline, or GCC takes them for a new and a free that do not fit each other.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const memory = allocations_left != 0 ? std::malloc(size) : nullptr;
    if (memory == nullptr) throw std::bad_alloc();
    --allocations_left;
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using test::Bench;
using test::message_of;
using test::Piece;
using txt::Txt_text_form;

constexpr std::uint32_t WORD = 0x1000002;
constexpr const char* NO_VIEW =
    "runtime: Txtdfc_format_codec::create_text_view() - tokenisation failed";

TEST(Format_codec, TokenAnswersForItsText) {
    Bench bench;
    const std::u16string long_text(40000, u'x');
    const txt::Txt_physical_token* token = nullptr;
    const auto expect_text = [&](Txt_text_form form, std::u16string_view text) {
        EXPECT_EQ(token->crc(form),
                  scl::Scl_crc64::calculate(text.data(), text.size() * 2, scl::Scl_crc64::INITIAL));
        EXPECT_EQ(token->length(form), text.size());
        EXPECT_EQ(std::u16string_view(token->text(form), text.size()), text);
    };
    token =
        bench.attach(u"e\u0301te\u0301\t" + std::u16string(u"\0\u0301 ", 3) + long_text)->cfront();
    EXPECT_EQ(&token->view(), bench.view());
    expect_text(Txt_text_form::whole, u"e\u0301te\u0301");
    expect_text(Txt_text_form::visible, u"ete");
    EXPECT_EQ(std::u16string(token->trailer_text()), u"\t");
    EXPECT_EQ(token->next()->previous(), token);
    token = token->next();
    expect_text(Txt_text_form::whole, std::u16string_view(u"\0\u0301", 2));
    token = token->next();
    expect_text(Txt_text_form::whole, long_text);
    EXPECT_EQ(dynamic_cast<const txtdfc::Txtdfc_physical_token*>(token)->content_length(),
              80000 - 65536);
    EXPECT_EQ(token->next(), nullptr);
}

TEST(Format_codec, OneViewForEachAttachment) {
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
    EXPECT_TRUE(bench.attach(u"") == nullptr && bench.attach(u"\uFEFF") == nullptr);
    EXPECT_EQ(Bench(true).attach(u"\uFEFF")->cfront(), nullptr);
}

TEST(Format_codec, GivesOnlyTheFacetsGranted) {
    for (const auto& granted : {dff::DFF_TEXT_FACET_ID, dff::DFF_ANNOTATION_FACET_ID}) {
        const dfc::Dfc_facet_set only{granted};
        txtdfc::Txtdfc_format_codec codec(&only, nullptr, nullptr, false);
        for (const auto& asked : {dff::DFF_TEXT_FACET_ID, dff::DFF_ANNOTATION_FACET_ID}) {
            const auto* const facet = codec.query_facet(asked);
            ASSERT_EQ(facet != nullptr, asked == granted);
            EXPECT_TRUE(facet == nullptr || facet->facet_id() == asked);
        }
    }
}

TEST(Format_codec, FailedAttachSaysWhyAndLeavesNothingOfTheContentBefore) {
    const scl::Scl_wstring_buffer whole(u"x");
    test::Piecewise_buffer content(whole);
    const auto attached = [&](std::function<void(scl::Scl_status&)> fault) { // asked for its size
        content.size_fault = std::move(fault);
        Bench bench(true);
        bench.attach(u"before");
        scl::Scl_status fresh; // which has taken no memory yet
        bench.codec.attach(&content, fresh);
        allocations_left = NO_LIMIT;
        EXPECT_EQ(message_of([&] { bench.view(); }), NO_VIEW);
        EXPECT_FALSE(bench.codec.insert_content_back(u"n")); // its place is not known
        return fresh;
    };
    const std::runtime_error gone("gone");
    EXPECT_EQ(attached([](scl::Scl_status& status) { status.push(0xC2000013); }), 0xC2000013);
    EXPECT_EQ(attached([](scl::Scl_status&) { throw allocations_left = 0; }), 0xC200006A);
    const scl::Scl_status told = attached([&](scl::Scl_status&) { throw gone; });
    EXPECT_TRUE(told == 0xC200006B && told.entries()[0].argument->text() == u"gone");
    const auto without_memory = [&](scl::Scl_status&) {
        allocations_left = 0;
        throw gone;
    };
    EXPECT_EQ(attached(without_memory), 0xC2000001);
    content.contents_fault = [] { throw std::bad_alloc(); };
    EXPECT_EQ(attached({}), 0xC2000001);
}

TEST(Format_codec, ViewShowsWhatWasWrittenAfterAttaching) {
    const std::u16string text(5000, u'x');
    const auto bytes = std::as_bytes(std::span(text));
    scl::Scl_heap_buffer content;
    Bench bench;
    content.write_at(0, bytes, bench.status);
    bench.codec.attach(&content, bench.status);
    content.write_at(bytes.size(), bytes, bench.status); // which moves it in memory
    EXPECT_EQ(bench.view()->create_string(), text + text);
}

TEST(Format_codec, ViewSaysWhyThereIsNone) {
    Bench bench(true);
    EXPECT_EQ(message_of([&] { bench.view(); }),
              "logic: Txtdfc_format_codec::create_text_view() - no content attached");
    const std::u16string text(100000, u'x');
    const scl::Scl_wstring_buffer whole(text);
    test::Piecewise_buffer content(whole, 150000);
    bench.codec.attach(&content, bench.status);
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(message_of([&] { bench.view(); }), NO_VIEW);
    }
    content.fails_from = test::Piecewise_buffer::NEVER;
    EXPECT_EQ(test::pieces_of(bench.view()), (std::vector<Piece>{{text, u"", WORD, 0}}));
}

TEST(Format_codec, ContentReadInWindowsHasTheSameTokens) {
    std::mt19937 random(7);
    const std::u16string alphabet = u"ab1_.'\",: \n\u0308\u200D\u05D0\u231A\xD83D";
    std::u16string text;
    for (int i = 0; i < 200000; ++i) {
        text += random() % 2 == 0 ? u"\U0001F600" : std::u16string(1, alphabet[random() % 17]);
    }
    const scl::Scl_wstring_buffer whole(text);
    const test::Piecewise_buffer content(whole);
    Bench bench;
    EXPECT_TRUE(test::pieces_of(bench.attach(content)) == test::pieces_of(text));
}

TEST(Token_values, AreThoseOfTheView) {
    std::mt19937 random(8);
    const std::u16string alphabet =
        u"abcdeXYZ12_\u00E9\u044F.'\", \n\u0308\u200D\u05D0\u231A\uFEFF\u000B\u3000";
    for (int round = 0; round < 20000; ++round) {
        const std::size_t kinds = round % 2 == 0 ? 14 : alphabet.size(); // mostly one word, or many
        std::u16string text(random() % 24, u' ');
        std::ranges::generate(text, [&] { return alphabet[random() % kinds]; });
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

// Answers each question with the next operation of a list.
struct Scripted_tokeniser {
    static std::size_t run(auto&&...) { return 0; }
    void process(char32_t, txt::Txt_text_store&, std::uint32_t&, txt::Txt_parse_operation& next) {
        next = static_cast<txt::Txt_parse_operation>(script.at(at++));
    }
    void breakpoint(txt::Txt_text_store& text, std::uint32_t& type,
                    txt::Txt_parse_operation& next) {
        process(0, text, type, next);
    }

    std::vector<unsigned> script;
    std::size_t at = 0;
};

struct Deaf_sink {
    void add_token(auto&&...) const {}
    void add_trailer(auto&&...) const {}
};

TEST(Token_reader, RefusesATokeniserThatBreaksItsContract) {
    const auto fault_of = [](std::vector<unsigned> script) {
        const scl::Scl_wstring_buffer content(u"ab");
        cerc::Cerc_utf16_reader reader;
        scl::Scl_status status;
        reader.attach(content, status, false);
        Scripted_tokeniser tokeniser{std::move(script)};
        txt::Txt_text_store store;
        Deaf_sink sink;
        return message_of(
            [&] { txtdfc::Token_reader(reader, tokeniser, store, sink).read_all(status); });
    };
    const std::string fault = "logic: Txtdfc_format_codec::create_text_view() - ";
    for (const std::vector<unsigned>& script :
         std::vector<std::vector<unsigned>>{{3}, {0, 1, 3}, {0, 2, 4, 3}, {0, 2, 1, 3, 3}}) {
        EXPECT_EQ(fault_of(script), fault + "haven't been checkpointed");
    }
    for (const unsigned operation : {0U, 1U, 2U}) {
        EXPECT_EQ(fault_of({0, 1, operation}), fault + "unexpected operation");
    }
    EXPECT_EQ(fault_of({0, 2, 1, 3, 1, 4}), "nothing thrown");
}

TEST(Token_pool, LimitCountsAllTokensButThoseGivenBack) {
    Bench bench(false, nullptr, 3);
    EXPECT_EQ(test::pieces_of(bench.attach(std::u16string(3000, u'!'))).size(), 3000U);
    void* const front = dynamic_cast<void*>(bench.view()->cfront());
    void* const back = dynamic_cast<void*>(bench.view()->cback());
    EXPECT_EQ(message_of([&] { bench.attach(u"!"); }),
              "runtime: Too many tokens are required to tokenise the text (over 3000).  "
              "Tokenisation has failed.");
    bench.pool.give_back(back);
    bench.pool.give_back(front);
    txt::Txt_text_view& view = *bench.attach(u"a b");
    EXPECT_EQ(dynamic_cast<void*>(view.cfront()), front); // the last one given back first
    EXPECT_EQ(dynamic_cast<void*>(view.cback()), back);
    EXPECT_THROW((void)bench.pool.take(), std::bad_alloc);
    EXPECT_EQ(txtdfc::Txtdfc_token_pool().limit(), 15000000U);
}

// One that looks back again and again would not come to an end.
TEST(Format_codec, TakesLinearTimeForAnyText) {
    constexpr std::size_t UNITS = 1000000;
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
        EXPECT_TRUE(Bench().attach(text)->create_string() == text);
    }
}

} // namespace
