#include "views/HostedView.h"

#include <gtest/gtest.h>

#include "platform/scripted/FixedTextRuler.h"
#include "platform/scripted/ScriptedAppearance.h"
#include "views/Button.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

const TextStyle kTen{.font = {.size = 10}};

// A screen of two buttons, 60 x 12.5 points each, the first telling whether the pointer is over it.
class HostedViewTest : public testing::Test {
 protected:
    Element body() {
        ++evaluations_;
        if (!rowAbove_) return buttons();
        return vstack({}, text("", kTen).frame({.width = 60, .height = 20}), buttons());
    }
    Element buttons() {
        return vstack(
            {},
            button("First",
                   text(hovered_ ? "<first>" : "first", kTen).frame({.width = 60}).onHover([this](bool over) {
                       hovered_ = over;
                       view_.invalidate();
                   }),
                   [this] { pressed_ += '1'; }),
            button("Second", text("second", kTen).frame({.width = 60}), [this] { pressed_ += '2'; }));
    }
    DisplayList paint() { return view_.displayList(view_.fittingSize(), {}); }
    void send(PointerEvent::Kind kind, Point at = {}) { view_.pointer({kind, at}); }

    FixedTextRuler ruler_;
    ScriptedAppearance appearance_;
    int evaluations_ = 0;
    bool hovered_ = false;
    bool rowAbove_ = false;
    std::string pressed_;
    HostedView view_{[this] { return body(); }, ruler_, appearance_};
};

TEST_F(HostedViewTest, EvaluatesTheBodyOnlyWhenAskedAndOnlyAfterAChange) {
    int told = 0;
    view_.setChangeHandler([&] { ++told; });
    EXPECT_EQ(evaluations_, 0);
    EXPECT_EQ(view_.fittingSize(), (Size{60, 25}));
    paint();
    paint();
    EXPECT_EQ(evaluations_, 1);
    view_.invalidate();
    view_.invalidate();
    EXPECT_EQ(evaluations_, 1);
    EXPECT_EQ(told, 2);
    paint();
    EXPECT_EQ(evaluations_, 2);
}

TEST_F(HostedViewTest, AButtonActsWhenPressedAndReleasedOverIt) {
    paint();
    const Point first{10, 5}, second{10, 20};
    send(PointerEvent::Kind::press, first);
    EXPECT_EQ(pressed_, "");
    send(PointerEvent::Kind::release, first);
    EXPECT_EQ(pressed_, "1");
    send(PointerEvent::Kind::press, first);
    send(PointerEvent::Kind::release, second);
    EXPECT_EQ(pressed_, "1") << "released elsewhere";
    send(PointerEvent::Kind::release, first);
    EXPECT_EQ(pressed_, "1") << "not pressed";
    send(PointerEvent::Kind::press, second);
    paint();  // a new picture in between keeps the press
    send(PointerEvent::Kind::release, second);
    EXPECT_EQ(pressed_, "12");
    send(PointerEvent::Kind::press, first);
    send(PointerEvent::Kind::leave);
    send(PointerEvent::Kind::release, first);
    EXPECT_EQ(pressed_, "12") << "left in between";
}

TEST_F(HostedViewTest, HoverFollowsThePointerAndEndsWhenItLeaves) {
    paint();
    send(PointerEvent::Kind::move, {10, 5});
    EXPECT_TRUE(hovered_);
    EXPECT_NE(printed(paint()).find("<first>"), std::string::npos);
    const int evaluations = evaluations_;
    send(PointerEvent::Kind::move, {12, 6});
    paint();
    EXPECT_EQ(evaluations_, evaluations) << "moving within changes nothing";
    send(PointerEvent::Kind::move, {10, 20});
    EXPECT_FALSE(hovered_);
    send(PointerEvent::Kind::move, {10, 5});
    send(PointerEvent::Kind::leave);
    EXPECT_FALSE(hovered_);
}

TEST_F(HostedViewTest, HoverFollowsWhatMovesUnderARestingPointer) {
    paint();
    send(PointerEvent::Kind::move, {10, 5});
    EXPECT_TRUE(hovered_);
    rowAbove_ = true;
    view_.invalidate();
    paint();  // the button has moved down, and its path in the tree is another one
    EXPECT_FALSE(hovered_);
    send(PointerEvent::Kind::move, {10, 25});
    EXPECT_TRUE(hovered_);
    rowAbove_ = false;
    view_.invalidate();
    paint();
    EXPECT_FALSE(hovered_);
}

TEST_F(HostedViewTest, TellsItsTreeAndTurnsDark) {
    const DisplayList light = paint();
    const AccessibleNode tree = view_.accessibleTree();
    ASSERT_EQ(tree.children.size(), 2U);
    EXPECT_EQ(tree.children[0].role, AccessibleRole::button);
    EXPECT_EQ(tree.children[0].name, "First");
    EXPECT_EQ(tree.children[0].frame, (Rect{{0, 0}, {60, 12.5}}));
    EXPECT_TRUE(tree.children[0].children.empty()) << "the label says nothing of its own";
    int told = 0;
    view_.setChangeHandler([&] { ++told; });
    appearance_.setDark(true);
    EXPECT_EQ(told, 1);
    const DisplayList dark = paint();
    EXPECT_EQ(dark.items.size(), light.items.size());
    EXPECT_NE(dark, light);
}

}  // namespace
}  // namespace norvane
