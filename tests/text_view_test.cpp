#include "scl/scl_crc64.hpp"
#include "token_support.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <stdexcept>

namespace {

using txt::Txt_association;
using txt::Txt_association_kind;
using txt::Txt_physical_token;
using txt::Txt_text_form;
using txt::Txt_virtual_token;

constexpr Txt_association_kind NAME{1};
constexpr Txt_association_kind CARD{2};

// The view of a text.
class View : public testing::Test {
protected:
    txt::Txt_text_view& view_of(std::u16string text) {
        text_ = std::move(text);
        codec_.set_modifiable(true);
        codec_.attach(&content_.emplace(text_), status_);
        return *test::view_of(codec_);
    }
    static Txt_physical_token& token(txt::Txt_text_view& view, int index) {
        Txt_physical_token* token = view.cfront();
        for (; index > 0; --index) {
            token = token->next();
        }
        return *token;
    }
    [[nodiscard]] std::u16string composed() { return test::text_in(*codec_.compose(status_)); }

    std::u16string text_;
    std::optional<scl::Scl_wstring_buffer> content_;
    txt::Txt_text_table table_;
    txtdfc::Txtdfc_format_codec codec_{nullptr, &table_, nullptr, true};
    scl::Scl_status status_;
};

TEST_F(View, WalksBothWaysAndCounts) {
    const std::u16string text = u"\t\u00A0Anna, 12 + 3.5!\r\nLee";
    const txt::Txt_text_view& view = view_of(text);
    static_assert(std::bidirectional_iterator<txt::Txt_token_iterator>);
    std::u16string forward;
    for (auto at = view.cbegin(); at != view.cend(); ++at) { // NOLINT: the view has no begin()
        forward += at->formatted_text();
    }
    EXPECT_EQ(forward, text);
    std::u16string backward;
    for (auto at = view.cend(); at != view.cbegin();) {
        backward += (--at)->text_entry();
    }
    EXPECT_EQ(backward, u"Lee!3.5+12,Anna");
    EXPECT_EQ(view.create_string(), text);
    EXPECT_EQ(view.word_token_count(), 2U);
    EXPECT_EQ(view.number_token_count(), 2U);
    EXPECT_EQ(view.punctuation_token_count(), 2U);
    EXPECT_EQ(view.symbol_token_count(), 1U);
    EXPECT_TRUE(view.cfront()->is_trailer());
    EXPECT_FALSE(view.cfront()->is_text());
    EXPECT_EQ(std::u16string(view.cfront()->text(Txt_text_form::whole)), u"");
    EXPECT_TRUE(view.cback()->is_text());
    EXPECT_EQ(std::u16string(view.cback()->trailer_text()), u"");
    const txt::Txt_text_view& empty = view_of(u"");
    EXPECT_EQ(empty.cbegin(), empty.cend());
    EXPECT_EQ(empty.vbegin(), empty.vend());
    EXPECT_EQ(empty.create_string(), u"");
}

TEST_F(View, TokensCompareByPlace) {
    txt::Txt_text_view& view = view_of(u"a b c d e");
    Txt_physical_token& b = token(view, 1);
    Txt_physical_token& d = token(view, 3);
    EXPECT_EQ(d.position(), 3U);
    EXPECT_TRUE(b.is_before(d) && d.is_after(b) && !b.is_after(d) && !b.is_before(b));
    EXPECT_TRUE(b.contains(b) && b.overlaps(b) && !b.contains(d) && !b.overlaps(d));
    const Txt_virtual_token& bcd = view.add_virtual_token(7, b, d);
    const Txt_virtual_token& de = view.add_virtual_token(7, d, token(view, 4));
    EXPECT_TRUE(bcd.contains(d) && !d.contains(bcd) && bcd.overlaps(de) && !bcd.contains(de));
    EXPECT_TRUE(!bcd.is_before(de) && b.is_before(de) && de.is_after(token(view, 2)));
    txtdfc::Txtdfc_format_codec other(nullptr, nullptr, nullptr, false);
    other.attach(&*content_, status_);
    EXPECT_FALSE(b.is_before(*test::view_of(other)->cback()) ||
                 b.contains(*test::view_of(other)->cfront()->next()));
}

TEST_F(View, VirtualTokensStandForRuns) {
    txt::Txt_text_view& view = view_of(u"Mr. Ann-Lee\u0301  Smith!");
    Txt_virtual_token& name = view.add_virtual_token(7, token(view, 2), token(view, 4));
    EXPECT_EQ(name.type(), 7U);
    EXPECT_EQ(name.text_entry(), u"Ann-Lee\u0301");
    EXPECT_EQ(std::u16string(name.text(Txt_text_form::visible)), u"Ann-Lee");
    EXPECT_EQ(name.trailer_entry(), u"  ");
    EXPECT_EQ(std::u16string(name.formatted_text()), u"Ann-Lee\u0301  ");
    EXPECT_EQ(name.formatted_text_length(), 10U);
    EXPECT_EQ(name.length(Txt_text_form::visible), 7U);
    EXPECT_EQ(name.crc(Txt_text_form::visible),
              scl::Scl_crc64::calculate(u"Ann-Lee", 14, scl::Scl_crc64::INITIAL));
    EXPECT_EQ(name.previous(), &token(view, 1));
    EXPECT_EQ(name.next()->text_entry(), u"Smith");
    Txt_virtual_token& full = view.add_virtual_token(8, token(view, 0), token(view, 5));
    EXPECT_EQ(token(view, 3).vtokens(), (std::vector<Txt_virtual_token*>{&name, &full}));
    EXPECT_EQ(token(view, 5).vtokens(), (std::vector<Txt_virtual_token*>{&full}));
    EXPECT_TRUE(name.unlink() && !name.unlink());
    EXPECT_EQ(&*view.vbegin(), &full);
    EXPECT_TRUE(name.link() && !name.link());
    EXPECT_EQ(std::distance(view.vbegin(), view.vend()), 2);
    EXPECT_THROW(view.add_virtual_token(7, token(view, 2), token(view, 1)), std::invalid_argument);
}

TEST_F(View, VirtualTokensAreEditedOverTheRun) {
    const auto run = [&](txt::Txt_text_view& view) -> Txt_virtual_token& {
        return view.add_virtual_token(7, token(view, 1), token(view, 3));
    };
    EXPECT_TRUE(run(view_of(u"a 1234 5678 90 b")).redact(2, 5));
    EXPECT_EQ(composed(), u"a 12** ***8 90 b");
    EXPECT_TRUE(run(view_of(u"a 1234 5678 90 b")).redact(4, 0));
    EXPECT_EQ(composed(), u"a 1234 **** ** b");
    EXPECT_TRUE(run(view_of(u"a 12 34 56 b")).make_safe());
    EXPECT_EQ(composed(), u"a ** ** ** b");
    EXPECT_TRUE(run(view_of(u"a 12 34 56 b")).replace_text(u"x", u"<", u">"));
    EXPECT_EQ(composed(), u"a <x  > b");
    EXPECT_TRUE(run(view_of(u"a 12 34 56 b")).replace_text(u"", u"", u">"));
    EXPECT_EQ(composed(), u"a 12 34 56> b");
    txt::Txt_text_view& view = view_of(u"a 12 34 56 b");
    EXPECT_FALSE(run(view).replace_text(u"", u"", u""));
    EXPECT_TRUE(token(view, 2).remove());
    EXPECT_FALSE(run(view).redact(0, 0));
}

TEST_F(View, AssociationsBelongToATokenAndAKind) {
    txt::Txt_text_view& view = view_of(u"a b c");
    const auto object = std::make_shared<int>(5);
    Txt_physical_token& b = token(view, 1);
    EXPECT_FALSE(b.is_text(NAME));
    EXPECT_FALSE(view.remove_association(b, NAME));
    EXPECT_TRUE(view.add_association(b, {NAME, object}));
    EXPECT_FALSE(view.add_association(b, {NAME, nullptr}));
    EXPECT_TRUE(view.add_association(b, {CARD, nullptr}));
    EXPECT_TRUE(view.add_association(token(view, 0), {CARD, object}));
    EXPECT_TRUE(b.is_text(NAME) && b.is_text(CARD) && !token(view, 2).is_text(CARD));
    EXPECT_EQ(view.find_associations(b),
              (std::vector<Txt_association>{{NAME, object}, {CARD, nullptr}}));
    EXPECT_TRUE(view.remove_association(b, CARD));
    EXPECT_FALSE(b.is_text(CARD));
    EXPECT_EQ(view.remove_associations(b), 1U);
    EXPECT_EQ(view.find_associations(b), std::vector<Txt_association>());
    EXPECT_EQ(object.use_count(), 2);
}

TEST_F(View, UnlinkedTokensAreLeftOut) {
    txt::Txt_text_view& view = view_of(u"a b c d");
    Txt_physical_token& b = token(view, 1);
    Txt_physical_token& c = token(view, 2);
    Txt_physical_token& d = token(view, 3);
    EXPECT_EQ(d.position(), 3U);
    view.add_virtual_token(7, token(view, 0), c);
    view.add_virtual_token(7, c, d);
    view.add_association(b, {NAME, nullptr});
    EXPECT_TRUE(b.unlink() && !b.unlink());
    EXPECT_EQ(view.create_string(), u"a c d");
    EXPECT_EQ(d.position(), 2U);
    EXPECT_EQ(std::distance(view.vbegin(), view.vend()), 2);
    EXPECT_FALSE(b.is_text(NAME));
    EXPECT_THROW(view.add_virtual_token(7, b, d), std::invalid_argument);
    EXPECT_TRUE(c.unlink());
    EXPECT_EQ(view.vbegin(), view.vend());
    EXPECT_FALSE(b.link()); // where it stood, c does not stand any more
    EXPECT_TRUE(d.unlink() && d.link() && !d.link());
    EXPECT_TRUE(c.link() && b.link());
    EXPECT_EQ(view.create_string(), u"a b c d");
    EXPECT_EQ(d.position(), 3U);
    EXPECT_EQ(view.cback(), &d);
}

TEST_F(View, LocksKeepTheOrder) {
    txt::Txt_text_view& view = view_of(u"a b");
    Txt_virtual_token& run = view.add_virtual_token(7, token(view, 0), token(view, 1));
    EXPECT_THROW(view.unlock(), std::logic_error);
    view.lock();
    view.lock();
    view.unlock();
    EXPECT_FALSE(view.purge() || view.cfront()->unlink() || run.unlink());
    EXPECT_THROW(view.start_content(), std::logic_error);
    view.unlock();
    view.start_content();
    EXPECT_THROW(view.lock(), std::logic_error);
    EXPECT_FALSE(view.purge());
    view.end_content();
    view.add_association(run, {NAME, nullptr});
    EXPECT_TRUE(view.purge());
    EXPECT_EQ(view.cfront(), nullptr);
    EXPECT_EQ(view.cback(), nullptr);
    EXPECT_EQ(view.vbegin(), view.vend());
}

TEST_F(View, TextsAreKeptOnceInTheTable) {
    txt::Txt_text_view& view = view_of(u"a b");
    const std::u16string_view kept = view.insert_text(u"a");
    EXPECT_EQ(kept.data(), view.cfront()->text(Txt_text_form::whole));
    EXPECT_EQ(view.insert_whitespace(u" ").data(), view.cfront()->trailer_text());
    EXPECT_EQ(view.lookup_text(u"abc", 1).data(), kept.data());
    EXPECT_EQ(view.lookup_text(u"abc").data(), nullptr);
    EXPECT_EQ(table_.lookup(u"b").data(), view.cback()->text(Txt_text_form::whole));
    EXPECT_EQ(*view.empty_text(), u'\0');
    txt::Txt_text_view alone(3, nullptr);
    EXPECT_EQ(alone.type(), 3U);
    EXPECT_EQ(alone.lookup_text(u"x").data(), nullptr);
    const std::u16string_view own = alone.insert_text(u"x");
    EXPECT_EQ(alone.lookup_text(u"x").data(), own.data());
    Txt_physical_token placeless(1, u"x", alone);
    EXPECT_FALSE(placeless.remove() || placeless.redact(0, 0) ||
                 placeless.replace_text(u"y", u"", u""));
}

} // namespace
