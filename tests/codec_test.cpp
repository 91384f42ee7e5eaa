#include "token_support.hpp"
#include "txt/txt_tokeniser.hpp"
#include "txtdfc/dff_annotation_facet.hpp"
#include "txtdfc/txtdfc_view_builder.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <random>

namespace {

using test::Piece;
using txt::Txt_text_form;
using Operation = txt::Txt_parse_operation;

constexpr std::uint32_t WORD = 0x1000002;
constexpr std::uint32_t NUMBER = 0x1000003;
constexpr std::uint32_t PUNCTUATION = 0x1000004;
constexpr std::uint32_t SYMBOL = 0x1000005;

// CRC-64/XZ bit by bit over the units' little-endian bytes.
std::uint64_t slow_crc(const std::u16string& text) {
    if (text.empty()) return 0;
    std::uint64_t reg = ~std::uint64_t{0};
    for (const char16_t unit : text) {
        reg ^= unit;
        for (int bit = 0; bit < 16; ++bit) {
            reg = (reg >> 1) ^ ((reg & 1) != 0 ? 0xC96C5795D7870F42 : 0);
        }
    }
    return ~reg;
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

// A codec with what it needs around it.
struct Bench {
    explicit Bench(bool view_of_empty = false, txt::Txt_text_table* table = nullptr)
        : codec(nullptr, table, &pool, view_of_empty) {}

    txtdfc::Txtdfc_text_view* attach(const scl::Scl_buffer& content) {
        codec.attach(&content, status);
        return test::view_of(codec);
    }

    txtdfc::Txtdfc_token_pool pool;
    txtdfc::Txtdfc_format_codec codec;
    scl::Scl_status status;
};

TEST(Codec, TypesTrailersAndOffsets) {
    EXPECT_EQ(test::pieces_of(u"Mary-Jane O'Neil, 1.5 + x\r\n\t"),
              (std::vector<Piece>{{u"Mary", u"", WORD, 0},
                                  {u"-", u"", PUNCTUATION, 8},
                                  {u"Jane", u" ", WORD, 10},
                                  {u"O'Neil", u"", WORD, 20},
                                  {u",", u" ", PUNCTUATION, 32},
                                  {u"1.5", u" ", NUMBER, 36},
                                  {u"+", u" ", SYMBOL, 44},
                                  {u"x", u"\r\n\t", WORD, 48}}));
    // The type is that of the first character visible by itself; marks alone are a symbol.
    EXPECT_EQ(test::pieces_of(u"\u0301! \u0301a\u200D\u203C\u200D"),
              (std::vector<Piece>{{u"\u0301", u"", SYMBOL, 0},
                                  {u"!", u" \u0301", PUNCTUATION, 2},
                                  {u"a\u200D\u203C\u200D", u"", WORD, 8}}));
    EXPECT_EQ(test::pieces_of(u"\u200D\u203C"),
              (std::vector<Piece>{{u"\u200D\u203C", u"", PUNCTUATION, 0}}));
    EXPECT_EQ(test::pieces_of(u" \n"), (std::vector<Piece>{{u"", u" \n", 0x1000001, 0}}));
}

TEST(Codec, TokenAnswersForItsText) {
    Bench bench;
    const std::u16string text = u"e\u0301te\u0301\t\U0001F600";
    const scl::Scl_wstring_buffer content(text);
    const txt::Txt_physical_token* const token = bench.attach(content)->cfront();
    EXPECT_EQ(token->crc(Txt_text_form::whole), slow_crc(u"e\u0301te\u0301"));
    EXPECT_EQ(token->crc(Txt_text_form::visible), slow_crc(u"ete"));
    EXPECT_EQ(token->length(Txt_text_form::whole), 5U);
    EXPECT_EQ(token->length(Txt_text_form::visible), 3U);
    EXPECT_EQ(std::u16string(token->text(Txt_text_form::whole)), u"e\u0301te\u0301");
    EXPECT_EQ(std::u16string(token->text(Txt_text_form::visible)), u"ete");
    EXPECT_EQ(std::u16string(token->trailer_text()), u"\t");
    EXPECT_EQ(token->next()->length(Txt_text_form::visible), 1U);
    EXPECT_EQ(token->next()->previous(), token);
    EXPECT_EQ(&token->view(), test::view_of(bench.codec));
    EXPECT_EQ(token->next()->next(), nullptr);
}

TEST(Codec, ValueCoversEveryLengthAndAZeroInside) {
    for (std::size_t length = 1; length < 600; length += 7) {
        Bench bench;
        const std::u16string text(length, u'x');
        const scl::Scl_wstring_buffer content(text);
        EXPECT_EQ(bench.attach(content)->cfront()->crc(Txt_text_form::whole), slow_crc(text));
    }
    Bench bench;
    const std::u16string text(u"\0\u0301", 2);
    const scl::Scl_wstring_buffer content(text);
    EXPECT_EQ(bench.attach(content)->cfront()->crc(Txt_text_form::whole), slow_crc(text));
}

TEST(Codec, ByteOrderMarkIsNotText) {
    EXPECT_EQ(test::pieces_of(u"\uFEFFab\uFEFF"),
              (std::vector<Piece>{{u"ab\uFEFF", u"", WORD, 2}}));
    Bench bench;
    const std::u16string text = u"\uFEFF";
    const scl::Scl_wstring_buffer mark(text);
    EXPECT_EQ(bench.attach(mark), nullptr);
    Bench asking(true);
    ASSERT_NE(asking.attach(mark), nullptr);
    EXPECT_EQ(test::view_of(asking.codec)->cfront(), nullptr);
}

TEST(Codec, OneViewForEachAttachment) {
    Bench bench;
    EXPECT_EQ(test::view_of(bench.codec), nullptr);
    const std::u16string first = u"one two";
    const std::u16string second = u"three";
    const scl::Scl_wstring_buffer first_content(first);
    const scl::Scl_wstring_buffer second_content(second);
    bench.status.push(scl::SCL_STATUS_READ_FAILED);
    txtdfc::Txtdfc_text_view* const view = bench.attach(first_content);
    EXPECT_EQ(bench.status.value(), 0U);
    EXPECT_EQ(test::view_of(bench.codec), view);
    unsigned cursor = 0;
    EXPECT_EQ(bench.codec.text_view(1, cursor), nullptr);
    EXPECT_EQ(cursor, 0xFFFFFFFF);
    EXPECT_EQ(bench.codec.text_view(0, cursor), nullptr);
    EXPECT_EQ(test::pieces_of(bench.attach(second_content)),
              (std::vector<Piece>{{u"three", u"", WORD, 0}}));
    const scl::Scl_wstring_buffer empty(u"");
    EXPECT_EQ(bench.attach(empty), nullptr);
}

TEST(Codec, GivesOnlyTheFacetsGranted) {
    const dfc::Dfc_facet_set text_only{dff::DFF_TEXT_FACET_ID};
    const dfc::Dfc_facet_set neither;
    txtdfc::Txtdfc_format_codec granted(&text_only, nullptr, nullptr, false);
    txtdfc::Txtdfc_format_codec refused(&neither, nullptr, nullptr, false);
    dfc::Dfc_format_facet* const facet = granted.query_facet(dff::DFF_TEXT_FACET_ID);
    ASSERT_NE(facet, nullptr);
    EXPECT_EQ(facet->facet_id(), dff::DFF_TEXT_FACET_ID);
    EXPECT_EQ(granted.query_facet(dff::DFF_ANNOTATION_FACET_ID), nullptr);
    EXPECT_EQ(refused.query_facet(dff::DFF_TEXT_FACET_ID), nullptr);
}

TEST(Codec, TextsOfATableAreShared) {
    txt::Txt_text_table table;
    Bench bench(false, &table);
    const std::u16string text = u"same other same";
    const scl::Scl_wstring_buffer content(text);
    const txt::Txt_physical_token* const token = bench.attach(content)->cfront();
    const txt::Txt_physical_token* const third = token->next()->next();
    EXPECT_EQ(third->text(Txt_text_form::whole), token->text(Txt_text_form::whole));
    EXPECT_EQ(table.lookup(u"other"), token->next()->text_entry());
    EXPECT_EQ(table.lookup(u"none").data(), nullptr);
    EXPECT_EQ(token->trailer_entry(), u" ");
}

// Reports or throws what it is told to when it is attached.
class Faulty_buffer final : public scl::Scl_buffer {
public:
    explicit Faulty_buffer(std::function<void(scl::Scl_status&)> fault)
        : fault_(std::move(fault)) {}
    [[nodiscard]] std::uint64_t size(bool /*in_units*/, scl::Scl_status& status) const override {
        fault_(status);
        return 2;
    }
    std::size_t read_at(std::uint64_t /*offset*/, std::span<std::byte> /*bytes*/,
                        scl::Scl_status& /*status*/) const override {
        return 0;
    }

private:
    std::function<void(scl::Scl_status&)> fault_;
};

scl::Scl_status attach_fault(std::function<void(scl::Scl_status&)> fault) {
    const Faulty_buffer content(std::move(fault));
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
    EXPECT_EQ(message_of([&] { (void)test::view_of(bench.codec); }),
              "logic: Txtdfc_format_codec::create_text_view() - no content attached");
    const std::u16string text(100000, u'x');
    test::Piecewise_buffer content(text, 150000);
    bench.codec.attach(&content, bench.status);
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(message_of([&] { (void)test::view_of(bench.codec); }),
                  "runtime: Txtdfc_format_codec::create_text_view() - tokenisation failed");
    }
    content.mend();
    EXPECT_EQ(test::pieces_of(test::view_of(bench.codec)),
              (std::vector<Piece>{{text, u"", WORD, 0}}));
}

TEST(Codec, ContentReadInWindowsHasTheSameTokens) {
    std::mt19937 random(7);
    const std::u16string alphabet = u"ab1_.'\",: \n\u0308\u200D\u05D0\u231A";
    std::u16string text;
    for (int i = 0; i < 200000; ++i) {
        text += random() % 50 == 0 ? u"\U0001F600" : std::u16string(1, alphabet[random() % 16]);
    }
    EXPECT_EQ(test::pieces_of(test::Piecewise_buffer(text)), test::pieces_of(text));
}

TEST(Codec, ContentLengthKeepsSixteenBits) {
    Bench bench;
    const std::u16string text(40000, u'x');
    const scl::Scl_wstring_buffer content(text);
    const auto* token =
        dynamic_cast<const txtdfc::Txtdfc_physical_token*>(bench.attach(content)->cfront());
    EXPECT_EQ(token->content_length(), 80000 - 65536);
    EXPECT_EQ(token->length(Txt_text_form::whole), 40000U);
}

TEST(TokenPool, LimitCountsUntilRewound) {
    txtdfc::Txtdfc_token_pool pool(3);
    txtdfc::Txtdfc_format_codec codec(nullptr, nullptr, &pool, false);
    scl::Scl_status status;
    const std::u16string full(3000, u'!');
    const scl::Scl_wstring_buffer full_content(full);
    const scl::Scl_wstring_buffer one(u"!");
    codec.attach(&full_content, status);
    EXPECT_EQ(test::pieces_of(test::view_of(codec)).size(), 3000U);
    codec.attach(&one, status);
    EXPECT_EQ(message_of([&] { (void)test::view_of(codec); }),
              "runtime: Too many tokens are required to tokenise the text (over 3000).  "
              "Tokenisation has failed.");
    pool.rewind();
    EXPECT_EQ(test::pieces_of(test::view_of(codec)).size(), 1U);
    EXPECT_EQ(txtdfc::Txtdfc_token_pool().limit(), 15000000U);
}

TEST(TokenPool, SlotsGivenBackAreTakenFirst) {
    txtdfc::Txtdfc_token_pool pool(1);
    std::vector<void*> slots(1000);
    for (void*& slot : slots) {
        slot = pool.take();
    }
    pool.give_back(slots[3]);
    pool.give_back(slots[700]);
    EXPECT_EQ(pool.take(), slots[700]);
    EXPECT_EQ(pool.take(), slots[3]);
    EXPECT_THROW((void)pool.take(), std::bad_alloc);
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
    txtdfc::Txtdfc_view_builder(reader, tokeniser, view, bench.pool).build(bench.status);
    view.end_content();
    return test::pieces_of(&view);
}

std::vector<Piece> build_by_script(std::vector<unsigned> script) {
    Scripted_tokeniser tokeniser(std::move(script));
    return build_with(tokeniser, u"ab");
}

TEST(ViewBuilder, DoesWhatTheTokeniserAsks) {
    const std::uint32_t untouched = 0x1000001;
    EXPECT_EQ(build_by_script({0, 2, 1, 3, 4, 0, 4}),
              (std::vector<Piece>{{u"a", u"", untouched, 0}, {u"b", u"", untouched, 2}}));
    // A checkpoint at b; at the end back to it.
    EXPECT_EQ(build_by_script({0, 2, 1, 3, 4, 0, 5}),
              (std::vector<Piece>{{u"a", u"b", untouched, 0}}));
    EXPECT_EQ(build_by_script({0, 1, 5}), (std::vector<Piece>{{u"", u"ab", untouched, 0}}));
    EXPECT_EQ(build_by_script({0, 9, 7, 6}), (std::vector<Piece>{}));
}

TEST(ViewBuilder, RefusesATokeniserThatBreaksItsContract) {
    const std::string no_checkpoint =
        "logic: Txtdfc_format_codec::create_text_view() - haven't been checkpointed";
    const std::string unexpected =
        "logic: Txtdfc_format_codec::create_text_view() - unexpected operation";
    EXPECT_EQ(message_of([] { build_by_script({3}); }), no_checkpoint);
    EXPECT_EQ(message_of([] { build_by_script({0, 1, 3}); }), no_checkpoint);
    EXPECT_EQ(message_of([] { build_by_script({0, 2, 4, 3}); }), no_checkpoint);
    EXPECT_EQ(message_of([] { build_by_script({0, 2, 1, 3, 3}); }), no_checkpoint);
    for (const unsigned operation : {0U, 1U, 2U}) {
        EXPECT_EQ(message_of([=] { build_by_script({0, 1, operation}); }), unexpected);
    }
}

// Counts what it is asked.
class Counting_tokeniser {
public:
    std::size_t run(std::span<const std::byte> units, txt::Txt_text_store& text,
                    std::uint32_t& type, Operation& operation) {
        ++questions;
        return tokeniser_.run(units, text, type, operation);
    }
    void process(char32_t character, txt::Txt_text_store& text, std::uint32_t& type,
                 Operation& operation) {
        ++questions;
        tokeniser_.process(character, text, type, operation);
    }
    void breakpoint(txt::Txt_text_store& text, std::uint32_t& type, Operation& operation) {
        tokeniser_.breakpoint(text, type, operation);
    }

    std::size_t questions = 0;

private:
    txt::Txt_tokeniser tokeniser_;
};

TEST(ViewBuilder, TakesLinearTimeForAnyText) {
    constexpr std::size_t UNITS = 200000;
    const auto repeated = [](const std::u16string& unit) {
        std::u16string text;
        while (text.size() < UNITS) {
            text += unit;
        }
        return text;
    };
    const std::u16string marks(UNITS, u'\u0308');
    for (const std::u16string& text :
         {repeated(u"a'"), repeated(u"a'a''"), repeated(u"'"), u"a'" + marks, u"a'" + marks + u"!",
          u"1," + marks + u"a", repeated(u"a.\u0308\u0308"), repeated(u"\u05D0\""),
          repeated(u" \u0308")}) {
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
