#include "scl/crc/scl_crc64.hpp"
#include "token_support.hpp"

#include <iterator>

namespace {

using txt::Txt_association;
using txt::Txt_association_kind;
using txt::Txt_physical_token;
using txt::Txt_text_form;
using txt::Txt_virtual_token;

constexpr Txt_association_kind NAME{1};
constexpr Txt_association_kind CARD{2};

class Text_view : public testing::Test {
protected:
    txt::Txt_text_view& view_of(std::u16string text) { return *bench.attach(std::move(text)); }
    Txt_physical_token& at(int index) { return test::token_at(*bench.view(), index); }
    Txt_virtual_token& run(std::uint32_t type, int front, int back) {
        return bench.view()->add_virtual_token(type, at(front), at(back));
    }

    txt::Txt_text_table table;
    test::Bench bench{true, &table};
};

TEST_F(Text_view, WalksBothWaysAndCounts) {
    const std::u16string text = u"\t\u00A0Anna, 12 + 3.5!\r\nLee";
    const txt::Txt_text_view& view = view_of(text);
    static_assert(std::bidirectional_iterator<txt::Txt_token_iterator>);
    std::u16string forward;
    for (auto i = view.cbegin(); i != view.cend(); ++i) { // NOLINT: the view has no begin()
        forward += i->formatted_text();
    }
    std::u16string backward;
    for (auto i = view.cend(); i != view.cbegin();) {
        backward += (--i)->text_entry();
    }
    EXPECT_EQ(forward, text);
    EXPECT_EQ(view.create_string(), text);
    EXPECT_EQ(backward, u"Lee!3.5+12,Anna");
    EXPECT_TRUE(view.word_token_count() == 2 && view.number_token_count() == 2);
    EXPECT_TRUE(view.punctuation_token_count() == 2 && view.symbol_token_count() == 1);
    EXPECT_TRUE(view.cfront()->is_trailer() && !view.cfront()->is_text());
    EXPECT_EQ(std::u16string(view.cfront()->text(Txt_text_form::whole)), u"");
    EXPECT_EQ(std::u16string(view.cback()->trailer_text()), u"");
    const txt::Txt_text_view& empty = view_of(u"");
    EXPECT_TRUE(empty.cbegin() == empty.cend() && empty.vbegin() == empty.vend());
}

TEST_F(Text_view, TokensCompareByPlace) {
    view_of(u"a b c d e");
    Txt_physical_token& b = at(1);
    Txt_physical_token& d = at(3);
    EXPECT_TRUE(b.is_before(d) && d.is_after(b) && !b.is_after(d) && !b.is_before(b));
    EXPECT_TRUE(b.contains(b) && b.overlaps(b) && !b.contains(d) && !b.overlaps(d));
    const Txt_virtual_token& bcd = run(7, 1, 3);
    const Txt_virtual_token& de = run(7, 3, 4);
    EXPECT_TRUE(bcd.contains(d) && !d.contains(bcd) && bcd.overlaps(de) && !bcd.contains(de));
    EXPECT_TRUE(!bcd.is_before(de) && b.is_before(de) && de.is_after(at(2)));
    test::Bench other;
    const txt::Txt_text_view& same_text = *other.attach(bench.held);
    EXPECT_FALSE(b.is_before(*same_text.cback()) || b.contains(*same_text.cfront()->next()));
}

TEST_F(Text_view, VirtualTokensStandForRuns) {
    txt::Txt_text_view& view = view_of(u"Mr. Ann-Lee\u0301  Smith!");
    Txt_virtual_token& name = run(7, 2, 4);
    EXPECT_EQ(std::u16string(name.formatted_text()), u"Ann-Lee\u0301  ");
    EXPECT_EQ(name.formatted_text_length(), 10U);
    EXPECT_EQ(std::u16string(name.text(Txt_text_form::visible)), u"Ann-Lee");
    EXPECT_EQ(name.length(Txt_text_form::visible), 7U);
    EXPECT_EQ(name.crc(Txt_text_form::visible),
              scl::Scl_crc64::calculate(u"Ann-Lee", 14, scl::Scl_crc64::INITIAL));
    EXPECT_EQ(name.previous(), &at(1));
    EXPECT_EQ(name.next(), &at(5));
    Txt_virtual_token& full = run(8, 0, 5);
    EXPECT_EQ(at(3).vtokens(), (std::vector<Txt_virtual_token*>{&name, &full}));
    EXPECT_EQ(at(5).vtokens(), (std::vector<Txt_virtual_token*>{&full}));
    EXPECT_TRUE(name.unlink() && !name.unlink());
    EXPECT_EQ(&*view.vbegin(), &full);
    EXPECT_TRUE(name.link() && !name.link());
    EXPECT_EQ(std::distance(view.vbegin(), view.vend()), 2);
    EXPECT_THROW(run(7, 2, 1), std::invalid_argument);
}

TEST_F(Text_view, VirtualTokensAreEditedOverTheRun) {
    const auto numbers = [&]() -> Txt_virtual_token& {
        view_of(u"a 1234 5678 90 b");
        return run(7, 1, 3);
    };
    EXPECT_TRUE(numbers().redact(5, 4));
    EXPECT_EQ(bench.composed(), u"a 1234 5*** *0 b");
    EXPECT_TRUE(numbers().redact(4, 0));
    EXPECT_EQ(bench.composed(), u"a 1234 **** ** b");
    EXPECT_TRUE(numbers().make_safe());
    EXPECT_EQ(bench.composed(), u"a ************ b");
    view_of(u"a 1\u0301 \U000E0061\u00A02 b"); // what attaches to a blank is in the run's text
    EXPECT_TRUE(run(7, 1, 2).make_safe());
    EXPECT_EQ(bench.composed(), u"a **** b");
    EXPECT_TRUE(numbers().replace_text(u"x", u"<", u">"));
    EXPECT_EQ(bench.composed(), u"a <x  > b");
    EXPECT_TRUE(numbers().replace_text(u"", u"", u">"));
    EXPECT_EQ(bench.composed(), u"a 1234 5678 90> b");
    Txt_virtual_token& token = numbers();
    EXPECT_FALSE(token.replace_text(u"", u"", u""));
    EXPECT_TRUE(at(2).remove());
    EXPECT_FALSE(token.redact(0, 0) || token.make_safe());
}

TEST_F(Text_view, AssociationsBelongToATokenAndAKind) {
    txt::Txt_text_view& view = view_of(u"a b c");
    const auto object = std::make_shared<int>(5);
    Txt_physical_token& b = at(1);
    EXPECT_FALSE(b.is_text(NAME) || view.remove_association(b, NAME));
    EXPECT_TRUE(view.add_association(b, {NAME, object}));
    EXPECT_FALSE(view.add_association(b, {NAME, nullptr}));
    EXPECT_TRUE(view.add_association(b, {CARD, nullptr}));
    for (const int other : {0, 2}) { // before and behind it
        EXPECT_TRUE(view.add_association(at(other), {CARD, object}));
        EXPECT_FALSE(at(other).is_text(NAME));
    }
    EXPECT_TRUE(b.is_text(NAME) && b.is_text(CARD));
    EXPECT_EQ(view.find_associations(b),
              (std::vector<Txt_association>{{NAME, object}, {CARD, nullptr}}));
    EXPECT_TRUE(view.remove_association(b, CARD) && !b.is_text(CARD));
    EXPECT_EQ(view.remove_associations(b), 1U);
    EXPECT_TRUE(at(0).is_text(CARD) && at(2).is_text(CARD));
    EXPECT_EQ(object.use_count(), 3);
}

TEST_F(Text_view, TokensAddedLaterHavePositionsToo) {
    txt::Txt_text_view& view = view_of(u"a b");
    EXPECT_EQ(at(1).position(), 1U);
    alignas(Txt_physical_token) std::byte memory[sizeof(Txt_physical_token)]; // the view destroys
    auto* const added = new (memory) Txt_physical_token(1, u"c", view);
    view.start_content();
    view.add_content(*added);
    EXPECT_EQ(added->position(), 2U);
    view.end_content();
    EXPECT_TRUE(added->position() == 2 && at(1).is_before(*added) && view.purge());
}

TEST_F(Text_view, UnlinkedTokensAreLeftOut) {
    txt::Txt_text_view& view = view_of(u"a b c d");
    Txt_physical_token& b = at(1);
    Txt_physical_token& c = at(2);
    Txt_physical_token& d = at(3);
    EXPECT_EQ(d.position(), 3U);
    run(7, 0, 2);
    run(7, 2, 3);
    view.add_association(b, {NAME, nullptr});
    EXPECT_TRUE(b.unlink() && !b.unlink() && !b.is_text(NAME));
    EXPECT_EQ(view.create_string(), u"a c d");
    EXPECT_EQ(d.position(), 2U);
    EXPECT_EQ(std::distance(view.vbegin(), view.vend()), 2);
    EXPECT_THROW(view.add_virtual_token(7, b, d), std::invalid_argument);
    EXPECT_TRUE(c.unlink());
    EXPECT_EQ(view.vbegin(), view.vend());
    EXPECT_FALSE(b.link()); // c, which came after it, is not there any more
    EXPECT_TRUE(d.unlink() && d.link() && !d.link() && c.link() && b.link());
    EXPECT_EQ(view.create_string(), u"a b c d");
    EXPECT_TRUE(d.position() == 3 && view.cback() == &d);
}

TEST_F(Text_view, LocksKeepTheOrder) {
    txt::Txt_text_view& view = view_of(u"a b");
    Txt_virtual_token& both = run(7, 0, 1);
    EXPECT_THROW(view.unlock(), std::logic_error);
    view.lock();
    view.lock();
    view.unlock();
    EXPECT_FALSE(view.purge() || view.cfront()->unlink() || both.unlink());
    EXPECT_THROW(view.start_content(), std::logic_error);
    view.unlock();
    view.start_content();
    EXPECT_THROW(view.lock(), std::logic_error);
    EXPECT_FALSE(view.purge());
    view.end_content();
    view.add_association(both, {NAME, nullptr});
    EXPECT_TRUE(view.purge());
    EXPECT_TRUE(view.cfront() == nullptr && view.cback() == nullptr);
    EXPECT_EQ(view.vbegin(), view.vend());
}

TEST_F(Text_view, TextsAreKeptOnceInTheTable) {
    txt::Txt_text_view& view = view_of(u"a b");
    const std::u16string_view kept = view.insert_text(u"a");
    EXPECT_EQ(kept.data(), view.cfront()->text(Txt_text_form::whole));
    EXPECT_EQ(view.insert_whitespace(u" ").data(), view.cfront()->trailer_text());
    EXPECT_EQ(view.lookup_text(u"abc", 1).data(), kept.data());
    EXPECT_EQ(view.lookup_text(u"abc").data(), nullptr);
    EXPECT_EQ(table.lookup(u"b").data(), view.cback()->text(Txt_text_form::whole));
    txt::Txt_text_view alone(3, nullptr);
    EXPECT_EQ(alone.lookup_text(u"x").data(), nullptr);
    const std::u16string_view own = alone.insert_text(u"x");
    EXPECT_EQ(alone.lookup_text(u"x").data(), own.data());
    Txt_physical_token placeless(1, u"x", alone);
    EXPECT_FALSE(placeless.remove() || placeless.redact(0, 0) || placeless.make_safe() ||
                 placeless.replace_text(u"y", u"", u""));
}

} // namespace
