#include "piecewise_buffer.hpp"
#include "token_support.hpp"
#include "txtdfc/dff_annotation_facet.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace {

constexpr std::uint64_t UNIT_BYTES = 2;

// A codec with both facets over a text, which may be edited unless said otherwise.
struct Editor {
    explicit Editor(std::u16string content, bool modifiable = true)
        : text(std::move(content)), buffer(text), codec(nullptr, nullptr, nullptr, false) {
        codec.set_modifiable(modifiable);
        codec.attach(&buffer, status);
        EXPECT_EQ(status.value(), 0U);
    }

    [[nodiscard]] dff::Dff_annotation_facet& notes() {
        return dynamic_cast<dff::Dff_annotation_facet&>(
            *codec.query_facet(dff::DFF_ANNOTATION_FACET_ID));
    }
    [[nodiscard]] txt::Txt_physical_token& token(int index) {
        txt::Txt_physical_token* token = test::view_of(codec)->cfront();
        for (; index > 0; --index) {
            token = token->next();
        }
        return *token;
    }
    // The edited text; the text itself when nothing is to be composed.
    [[nodiscard]] std::u16string composed() {
        const std::unique_ptr<scl::Scl_buffer> made = codec.compose(status);
        EXPECT_EQ(status.value(), 0U);
        EXPECT_EQ(made != nullptr, codec.modified());
        return made != nullptr ? test::text_in(*made) : text;
    }

    std::u16string text;
    scl::Scl_wstring_buffer buffer;
    txtdfc::Txtdfc_format_codec codec;
    scl::Scl_status status;
};

template <typename Exception>
std::string message_of(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& exception) {
        return exception.what();
    }
    return "nothing thrown";
}

std::u16string with_back(const std::u16string& content, std::u16string_view note) {
    Editor editor(content);
    EXPECT_TRUE(editor.notes().insert_content_back(note));
    return editor.composed();
}

std::u16string with_front(const std::u16string& content, std::u16string_view note) {
    Editor editor(content);
    EXPECT_TRUE(editor.notes().insert_content_front(note));
    return editor.composed();
}

TEST(Annotation, TakesTheContentsLineEnds) {
    EXPECT_EQ(with_back(u"abc", u"x"), u"abc\r\nx\r\n");
    EXPECT_EQ(with_back(u"abc\n", u"x"), u"abc\nx\n");
    EXPECT_EQ(with_back(u"abc\r\n", u"x"), u"abc\r\nx\r\n");
    EXPECT_EQ(with_back(u"a\nb", u"x"), u"a\nb\nx\n");
    EXPECT_EQ(with_back(u"a\r\nb\n", u"x"), u"a\r\nb\nx\n");
    EXPECT_EQ(with_back(u"a\nb\r\n", u"x"), u"a\nb\r\nx\r\n");
    EXPECT_EQ(with_back(u"a\r\nb", u"x"), u"a\r\nb\r\nx\r\n");
    EXPECT_EQ(with_back(u"a\r", u"x"), u"a\r\r\nx\r\n");
    EXPECT_EQ(with_back(u"", u"x"), u"x\r\n");
    EXPECT_EQ(with_back(u"\n", u"x"), u"\nx\n");
    EXPECT_EQ(with_back(u"\uFEFF", u"x"), u"\uFEFFx\r\n");
    EXPECT_EQ(with_front(u"\uFEFFabc\n", u"y\r"), u"\uFEFFy\nabc\n");
    EXPECT_EQ(with_front(u"abc", u"x"), u"x\r\nabc");
}

TEST(Annotation, LineEndsOfTheTextAreNormalised) {
    const std::u16string content = u"-\n";
    for (const auto& [note, lines] : {std::pair{u"a\r\nb\nc", u"a\nb\nc\n"},
                                      {u"a\n", u"a\n"},
                                      {u"a\r\n", u"a\n"},
                                      {u"a\r", u"a\n"},
                                      {u"a\rb", u"a\rb\n"},
                                      {u"a\r\r\n", u"a\r\r\n"},
                                      {u"a\r\r", u"a\r\r\n"},
                                      {u"a\r\r\r\nb", u"a\r\r\nb\n"},
                                      {u"\n\n", u"\n\n"},
                                      {u"a\n\r", u"a\n"},
                                      {u"\r", u"\n"}}) {
        EXPECT_EQ(with_back(content, note), content + lines) << testing::PrintToString(note);
    }
}

// The last LF stands, seen from the end, at both sides of each border between chunks.
TEST(Annotation, LastLineEndIsFoundAcrossChunks) {
    for (const std::size_t tail : {0, 1, 254, 255, 256, 257, 511, 512, 513, 2000}) {
        for (const std::u16string line_end : {u"\n", u"\r\n"}) {
            std::u16string text = u"\n\r\nx" + line_end + std::u16string(tail, u'y');
            const std::u16string made = with_back(text, u"n");
            if (tail != 0) text += line_end;
            text += u"n";
            text += line_end;
            EXPECT_EQ(made, text) << tail;
        }
    }
}

// Remembers what was read of it.
class Watched_buffer final : public scl::Scl_buffer {
public:
    explicit Watched_buffer(std::u16string_view text) : bytes_(text) {}

    [[nodiscard]] std::uint64_t size(bool in_units, scl::Scl_status& status) const override {
        return bytes_.size(in_units, status);
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        scl::Scl_status& status) const override {
        reads.emplace_back(offset, bytes.size());
        return bytes_.read_at(offset, bytes, status);
    }
    [[nodiscard]] std::span<const std::byte> contents() const override { return bytes_.contents(); }

    mutable std::vector<std::pair<std::uint64_t, std::size_t>> reads;

private:
    scl::Scl_wstring_buffer bytes_;
};

TEST(Annotation, ScansInChunksAndOnlyWhenGranted) {
    using Reads = std::vector<std::pair<std::uint64_t, std::size_t>>;
    const std::u16string text(600, u'x');
    const Watched_buffer content(text);
    scl::Scl_status status;
    const dfc::Dfc_facet_set text_only{dff::DFF_TEXT_FACET_ID};
    txtdfc::Txtdfc_format_codec plain(&text_only, nullptr, nullptr, false);
    plain.attach(&content, status);
    EXPECT_EQ(content.reads, Reads());
    const dfc::Dfc_facet_set notes_only{dff::DFF_ANNOTATION_FACET_ID};
    txtdfc::Txtdfc_format_codec annotated(&notes_only, nullptr, nullptr, false);
    annotated.attach(&content, status);
    EXPECT_EQ(content.reads, (Reads{{688, 512}, {176, 512}, {0, 176}}));
    EXPECT_EQ(annotated.query_facet(dff::DFF_TEXT_FACET_ID), nullptr);
    EXPECT_EQ(annotated.query_facet(dff::DFF_ANNOTATION_FACET_ID)->facet_id(),
              dff::DFF_ANNOTATION_FACET_ID);
}

TEST(Editing, MisuseIsToldExactly) {
    txtdfc::Txtdfc_format_codec codec(nullptr, nullptr, nullptr, false);
    scl::Scl_status status;
    const std::string name = "Txtdfc_format_codec::";
    EXPECT_EQ(message_of<std::logic_error>([&] { (void)codec.compose(status); }),
              name + "compose() - no content attached");
    EXPECT_EQ(message_of<std::logic_error>([&] { codec.insert_content_front(u"x"); }),
              name + "insert_content_front() - no content attached");
    EXPECT_EQ(message_of<std::logic_error>([&] { codec.insert_content_back(u""); }),
              name + "insert_content_back() - no content attached");
    EXPECT_EQ(message_of<std::invalid_argument>([&] { codec.insert_content_front(u"x", 1); }),
              name + "insert_content_front() - length not multiple of Char16");
    EXPECT_EQ(message_of<std::invalid_argument>([&] { codec.insert_content_back(u"x", 1); }),
              name + "insert_content_back() - length not multiple of Char16");
    const scl::Scl_wstring_buffer content(u"a");
    codec.attach(&content, status);
    codec.begin_transaction();
    EXPECT_EQ(message_of<std::logic_error>([&] { (void)codec.compose(status); }),
              name + "compose() - transaction in progress");
}

TEST(Editing, NothingIsQueuedUnlessModifiable) {
    Editor editor(u"abc", false);
    EXPECT_FALSE(editor.notes().insert_content_front(u"x"));
    EXPECT_FALSE(editor.notes().insert_content_back(u"x"));
    EXPECT_FALSE(editor.token(0).remove());
    EXPECT_FALSE(editor.token(0).redact(0, 0));
    EXPECT_FALSE(editor.token(0).replace_text(u"x", u"", u""));
    editor.codec.set_modifiable(true);
    EXPECT_FALSE(editor.notes().insert_content_back(u""));
    EXPECT_FALSE(editor.token(0).replace_text(u"", u"", u""));
    EXPECT_FALSE(editor.codec.modified());
    editor.status.push(scl::SCL_STATUS_READ_FAILED);
    EXPECT_EQ(editor.composed(), u"abc"); // which clears the status
}

TEST(Editing, TransactionsAndAttachments) {
    Editor editor(u"one two");
    EXPECT_TRUE(editor.codec.begin_transaction());
    EXPECT_TRUE(editor.codec.in_transaction());
    EXPECT_TRUE(editor.token(0).remove());
    EXPECT_FALSE(editor.codec.modified());
    EXPECT_TRUE(editor.codec.rollback_transaction());
    EXPECT_FALSE(editor.codec.rollback_transaction());
    EXPECT_TRUE(editor.codec.begin_transaction());
    EXPECT_FALSE(editor.codec.begin_transaction());
    EXPECT_TRUE(editor.token(1).remove());
    EXPECT_TRUE(editor.codec.commit_transaction());
    EXPECT_FALSE(editor.codec.in_transaction());
    EXPECT_EQ(editor.composed(), u"one ");
    editor.codec.begin_transaction();
    editor.codec.attach(&editor.buffer, editor.status);
    EXPECT_FALSE(editor.codec.in_transaction());
    EXPECT_FALSE(editor.codec.modified());
    EXPECT_EQ(editor.composed(), u"one two");
}

TEST(Editing, ReplaceAndRemove) {
    Editor editor(u"one two, three");
    EXPECT_TRUE(editor.token(0).replace_text(u"1", u"<", u">"));
    EXPECT_TRUE(editor.token(1).replace_text(u"", u"[", u"]"));
    EXPECT_TRUE(editor.token(2).replace_text(u";", u"(", u""));
    EXPECT_TRUE(editor.token(3).remove());
    EXPECT_FALSE(editor.token(3).replace_text(u"3", u"", u""));
    EXPECT_FALSE(editor.token(3).redact(1, 1));
    EXPECT_EQ(editor.composed(), u"<1> [two](; ");
}

std::u16string redacted(const std::u16string& text, std::size_t skip, std::size_t count) {
    Editor editor(text);
    EXPECT_TRUE(editor.token(0).redact(skip, count));
    return editor.composed();
}

TEST(Editing, RedactCountsVisibleCharacters) {
    EXPECT_EQ(redacted(u"abcdef", 0, 0), u"******");
    EXPECT_EQ(redacted(u"abcdef", 2, 3), u"ab***f");
    EXPECT_EQ(redacted(u"abcdef", 4, 9), u"abcd**");
    EXPECT_EQ(redacted(u"abcdef", 6, 1), u"abcdef");
    EXPECT_EQ(redacted(u"abcdef", 99, 0), u"abcdef");
    EXPECT_EQ(redacted(u"ae\u0301b", 1, 1), u"a*b");
    EXPECT_EQ(redacted(u"a\u0301\u0302", 1, 0), u"a\u0301");
    EXPECT_EQ(redacted(u"a\u0301\u0302bc", 1, 1), u"a\u0301*c");
    EXPECT_EQ(redacted(u"ab\u0301\u0302c", 0, 2), u"**\u0302c");
    EXPECT_EQ(redacted(u"ab\u0301", 0, 0), u"**");
    EXPECT_EQ(redacted(u"\u0301\u0302", 0, 0), u"\u0302");
    EXPECT_EQ(redacted(u"\U00010428\U00010429\U0001042A", 1, 1), u"\U00010428*\U0001042A");
    EXPECT_EQ(redacted(u"a\U000E0100b", 0, 1), u"*b"); // a pair that attaches
}

TEST(Editing, RedactsWithTheViewsCharacter) {
    Editor editor(u"abc d");
    EXPECT_EQ(test::view_of(editor.codec)->get_redaction_character(), U'*');
    test::view_of(editor.codec)->set_redaction_character(0x10023); // of which 16 bits remain
    EXPECT_TRUE(editor.token(0).redact(1, 0));
    test::view_of(editor.codec)->set_redaction_character(U'\u2588');
    EXPECT_TRUE(editor.token(1).make_safe());
    EXPECT_EQ(editor.composed(), u"a## \u2588");
}

TEST(Editing, LongTokensAreEditedWhole) {
    Editor editor(std::u16string(40000, u'x') + u"!");
    EXPECT_TRUE(editor.token(0).replace_text(u"y", u"", u"z"));
    EXPECT_EQ(editor.composed(), u"yz!");
}

// More than 4 GiB of one text after the other, of which little is ever read.
class Huge_buffer final : public scl::Scl_buffer {
public:
    static constexpr std::uint64_t SIZE = (std::uint64_t{4} << 30U) + 20;

    [[nodiscard]] std::uint64_t size(bool in_units, scl::Scl_status& /*status*/) const override {
        return in_units ? SIZE / UNIT_BYTES : SIZE;
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        scl::Scl_status& /*status*/) const override {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const std::uint64_t at = (offset + i) % 20;
            bytes[i] = std::byte(at == 18 ? '\n' : at % 2 == 0 ? 'a' + at / 2 : 0);
        }
        return bytes.size();
    }
};

TEST(Editing, OffsetsBeyondFourGigabytes) {
    const Huge_buffer content;
    txtdfc::Txtdfc_format_codec codec(nullptr, nullptr, nullptr, false);
    scl::Scl_status status;
    codec.set_modifiable(true);
    codec.attach(&content, status);
    txtdfc::Txtdfc_text_view view(codec, nullptr);
    const std::uint64_t first = Huge_buffer::SIZE - 16;
    txtdfc::Txtdfc_physical_token token(0x1000002, u"wxyz", view, first, 8);
    txtdfc::Txtdfc_physical_token next(0x1000002, u"z", view, first + 8, 2);
    EXPECT_TRUE(token.redact(1, 2));
    EXPECT_TRUE(next.replace_text(u"+", u"<", u">"));
    EXPECT_TRUE(codec.insert_content_back(u"end"));
    EXPECT_TRUE(codec.patcher().add_delete(0, first - 2));
    const std::unique_ptr<scl::Scl_buffer> made = codec.compose(status);
    ASSERT_NE(made, nullptr);
    std::u16string rest(10, u'\0');
    content.read_at(Huge_buffer::SIZE - 18, std::as_writable_bytes(std::span(rest).first(9)),
                    status);
    EXPECT_EQ(test::text_in(*made), rest.substr(0, 2) + u"**" + rest.substr(4, 1) + u"<+>" +
                                        rest.substr(6, 3) +
                                        (rest[8] == u'\n' ? u"end\n" : u"\nend\n"));
}

TEST(Editing, ComposeReportsWhatFails) {
    const std::u16string text(100000, u'x');
    const scl::Scl_wstring_buffer whole(text);
    test::Piecewise_buffer content(whole, 150000);
    const dfc::Dfc_facet_set text_only{dff::DFF_TEXT_FACET_ID};
    txtdfc::Txtdfc_format_codec codec(&text_only, nullptr, nullptr, false);
    scl::Scl_status status;
    codec.set_modifiable(true);
    codec.attach(&content, status);
    EXPECT_TRUE(codec.insert_content_front(u"x"));
    EXPECT_EQ(codec.compose(status), nullptr);
    EXPECT_EQ(status.value(), 0xC2000013);
    content.fails_from = test::Piecewise_buffer::NEVER;
    EXPECT_EQ(test::text_in(*codec.compose(status)), u"x\r\n" + text);
}

} // namespace
