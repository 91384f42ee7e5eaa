#include "piecewise_buffer.hpp"
#include "token_support.hpp"

#include <random>

// Edits a text through the codec and in a model of it; throws when they differ (fuzz/).
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using test::Bench;
using test::message_of;
using test::token_at;

// Tokens, redaction, replacing, notes at both ends, line ends and transactions.
TEST(Format_codec, DoesWhatTheSlowModelDoes) {
    std::mt19937 random(9); // NOLINT: the same numbers each time
    for (int round = 0; round < 20000; ++round) {
        const std::size_t operations = random() % 10;
        std::vector<std::uint8_t> input(2 + 4 * operations + random() % (round % 8 == 0 ? 60 : 8));
        std::ranges::generate(input, random);
        input[0] = random() % 8 == 0 ? 1 : random() % 2 * 2; // seldom a raw content
        input[1] = static_cast<std::uint8_t>(operations);
        ASSERT_NO_THROW(LLVMFuzzerTestOneInput(input.data(), input.size())) << round;
    }
}

// The last LF is, seen from the end, at both sides of each border between chunks.
TEST(Annotation_facet, LastLineEndIsFoundAcrossChunks) {
    for (const std::size_t tail : {0U, 1U, 254U, 255U, 256U, 257U, 511U, 512U, 513U, 2000U}) {
        for (const std::u16string line_end : {u"\n", u"\r\n"}) {
            std::u16string text = u"\n\r\nx" + line_end + std::u16string(tail, u'y');
            const scl::Scl_wstring_buffer whole(text);
            const test::Piecewise_buffer content(whole);
            Bench bench;
            bench.attach(content);
            EXPECT_TRUE(bench.codec.insert_content_back(u"n"));
            const std::u16string composed = bench.composed();
            if (tail != 0) text += line_end;
            text += u'n';
            EXPECT_EQ(composed, text + line_end) << tail;
        }
    }
}

TEST(Annotation_facet, NotesGoToTheEndOfAContentThatCouldNotBeRead) {
    const scl::Scl_wstring_buffer whole(u"one");
    test::Piecewise_buffer content(whole, 0);
    Bench bench;
    bench.codec.attach(&content, bench.status);
    EXPECT_EQ(bench.status, 0xC2000013);
    content.fails_from = test::Piecewise_buffer::NEVER;
    EXPECT_TRUE(bench.codec.insert_content_back(u"n"));
    EXPECT_EQ(bench.composed(), u"one\r\nn\r\n");
}

TEST(Format_codec, MisuseIsToldExactly) {
    Bench bench;
    txtdfc::Txtdfc_format_codec& codec = bench.codec;
    const auto expect_message = [](const std::function<void()>& action, const std::string& kind,
                                   const std::string& message) {
        EXPECT_EQ(message_of(action), kind + ": Txtdfc_format_codec::" + message);
    };
    expect_message([&] { bench.composed(); }, "logic", "compose() - no content attached");
    expect_message([&] { codec.insert_content_front(u"x"); }, "logic",
                   "insert_content_front() - no content attached");
    expect_message([&] { codec.insert_content_back(u""); }, "logic",
                   "insert_content_back() - no content attached");
    expect_message([&] { codec.insert_content_front(u"x", 1); }, "argument",
                   "insert_content_front() - length not multiple of Char16");
    expect_message([&] { codec.insert_content_back(u"x", 1); }, "argument",
                   "insert_content_back() - length not multiple of Char16");
    bench.attach(u"a");
    codec.begin_transaction();
    expect_message([&] { bench.composed(); }, "logic", "compose() - transaction in progress");
}

TEST(Format_codec, NothingIsQueuedUnlessModifiable) {
    Bench bench;
    bench.codec.set_modifiable(false);
    txt::Txt_physical_token& token = *bench.attach(u"abc")->cfront();
    EXPECT_FALSE(bench.codec.insert_content_front(u"x") || bench.codec.insert_content_back(u"x"));
    EXPECT_FALSE(token.remove() || token.redact(0, 0) || token.replace_text(u"x", u"", u""));
    bench.codec.set_modifiable(true);
    EXPECT_FALSE(bench.codec.insert_content_back(u""));
    bench.status.push(scl::SCL_STATUS_READ_FAILED);
    EXPECT_EQ(bench.composed(), u"abc"); // which clears the status
}

TEST(Format_codec, AttachingEndsATransactionAndDropsTheQueue) {
    Bench bench;
    EXPECT_TRUE(token_at(*bench.attach(u"one two"), 1).remove());
    EXPECT_EQ(bench.composed(), u"one ");
    bench.codec.begin_transaction();
    bench.attach(u"one two");
    EXPECT_FALSE(bench.codec.in_transaction());
    EXPECT_EQ(bench.composed(), u"one two");
}

TEST(Physical_token, EditsHaveTheViewsCharacterAndReachOverLongTexts) {
    Bench bench;
    txt::Txt_text_view& view = *bench.attach(u"abc d " + std::u16string(40000, u'x') + u"!");
    view.set_redaction_character(0x10023); // of which 16 bits remain
    EXPECT_TRUE(token_at(view, 0).redact(1, 0));
    view.set_redaction_character(U'\u2588');
    EXPECT_TRUE(token_at(view, 1).make_safe());
    EXPECT_TRUE(token_at(view, 2).replace_text(u"y", u"", u"z"));
    EXPECT_EQ(bench.composed(), u"a## \u2588 yz!");
}

TEST(Physical_token, MadeSafeNothingOfItIsLeft) {
    const auto made_safe = [](std::u16string text) {
        Bench bench;
        txt::Txt_physical_token* token = bench.attach(std::move(text))->cfront();
        for (; token != nullptr; token = token->next()) {
            EXPECT_TRUE(token->make_safe());
        }
        return bench.composed();
    };
    EXPECT_EQ(made_safe(u"\u1000\u103C\u102E\u1038 a\U000E0061\U000E0062."),
              u"* **"); // signs, tags
    EXPECT_EQ(made_safe(u"\t\U0001F600e\u0301te\u0301"), u"\t****");
    EXPECT_EQ(made_safe({0x0301, 0x0302, u'\n', 0xD800, u'\n', 0xD800, 0x200D, 0x231A}),
              u"*\n*\n*");
}

TEST(Format_codec, ComposeReportsWhatFails) {
    const std::u16string text(100000, u'x');
    const scl::Scl_wstring_buffer whole(text);
    test::Piecewise_buffer content(whole);
    Bench bench;
    EXPECT_TRUE(bench.attach(content)->cfront()->replace_text(u"", u"<", u""));
    content.fails_from = 150000;
    EXPECT_EQ(bench.codec.compose(bench.status), nullptr);
    EXPECT_EQ(bench.status.value(), 0xC2000013);
    content.fails_from = test::Piecewise_buffer::NEVER;
    EXPECT_EQ(bench.composed(), u"<" + text);
}

} // namespace
