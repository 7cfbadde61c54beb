#include <string>

#include "views/Button.h"
#include "views/ScreenTest.h"
#include "views/ScrollArea.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Kind = PointerEvent::Kind;
using Key = KeyEvent::Key;

// Three buttons below one another, 60 x 20 points each: the first tells whether the pointer is over it, the
// second can be turned off.
class InteractionTest : public ScreenTest {
 protected:
    Element body() override {
        return vstack(
            {},  //
            when(hasRowAbove_,
                 [] { return shape(Outline::rectangle(), {}).frame({.width = 60, .height = 20}); }),
            button("First", label(isOver_ ? "<first>" : "first").onHover([this](bool isOver) {
                heard_ += isOver ? "in " : "out ";
                view_.change([&] { isOver_ = isOver; });
            }),
                   [this] { heard_ += "1 "; }),
            button("Second", label("second"), [this] { heard_ += "2 "; }, {.isEnabled = isSecondEnabled_}),
            when(hasThird_, [this] {
                return button("Third", label("third"),
                              [this] {
                                  heard_ += "3 ";
                                  view_.change([this] { hasThird_ = false; });
                              },
                              {.radius = 6});
            }));
    }
    static Element label(const char* words) { return text(words, kTen).frame({.width = 60, .height = 20}); }
    std::string heard() {
        paint();
        return std::exchange(heard_, {});
    }
    // The ring around what has the keyboard; none where none is seen.
    std::optional<Rect> ring() {
        paint();
        for (const DisplayItem& item : picture_.items) {
            if (item.key == "//focus") return boundsOf(std::get<StrokeShape>(item.command).shape);
        }
        return std::nullopt;
    }

    bool hasRowAbove_ = false;
    bool isSecondEnabled_ = true;
    bool hasThird_ = true;
    bool isOver_ = false;
    std::string heard_;
};

TEST_F(InteractionTest, AButtonActsWhenPressedAndReleasedOverIt) {
    show();
    const Point second{30, 30}, third{30, 50};
    point(Kind::press, second);
    EXPECT_EQ(heard(), "");
    EXPECT_NEAR(opacityOf("second"), 0.55, 1e-9) << "held down";
    point(Kind::release, second);
    EXPECT_EQ(heard(), "2 ");
    EXPECT_EQ(opacityOf("second"), 1);
    point(Kind::press, second);
    point(Kind::move, third);
    paint();
    EXPECT_EQ(opacityOf("second"), 1) << "the pointer has left it";
    point(Kind::move, second);
    paint();
    EXPECT_NEAR(opacityOf("second"), 0.55, 1e-9) << "and come back";
    point(Kind::release, third);
    EXPECT_EQ(heard(), "") << "released elsewhere";
    point(Kind::release, second);
    EXPECT_EQ(heard(), "") << "not pressed";
    point(Kind::press, second);
    point(Kind::leave);
    point(Kind::release, second);
    EXPECT_EQ(heard(), "") << "left in between";
    point(Kind::press, third);
    change([] {});
    point(Kind::release, third);
    EXPECT_EQ(heard(), "3 ")
        << "an evaluation in between keeps the press, and the action may take its button away";
    EXPECT_FALSE(shows("third"));
}

TEST_F(InteractionTest, ADisabledButtonIsDimmedAndDoesNothing) {
    isSecondEnabled_ = false;
    show();
    EXPECT_NEAR(opacityOf("second"), 0.35, 1e-9);
    clickOn("second");
    EXPECT_EQ(heard(), "");
    const auto node = accessible("Second");
    ASSERT_TRUE(node);
    EXPECT_FALSE(node->isEnabled);
    EXPECT_EQ(node->actions, std::vector<std::string>{});
    EXPECT_FALSE(view_.perform(node->key, "press"));
    key(Key::tab);
    key(Key::tab);
    EXPECT_EQ(ring(), (Rect{{-2, 38}, {64, 24}})) << "the keyboard passes it by";
}

TEST_F(InteractionTest, HoverFollowsThePointerAndWhatStandsUnderIt) {
    show();
    point(Kind::move, {10, 5});
    EXPECT_EQ(heard(), "in ");
    EXPECT_TRUE(shows("<first>")) << "its label is another one now, and still hovered";
    point(Kind::move, {12, 6});
    EXPECT_EQ(heard(), "");
    point(Kind::move, {10, 30});
    EXPECT_EQ(heard(), "out ");
    point(Kind::move, {10, 5});
    point(Kind::leave);
    EXPECT_EQ(heard(), "in out ");

    point(Kind::move, {10, 5});
    heard();
    change([&] { hasRowAbove_ = true; });
    EXPECT_EQ(heard(), "out ") << "it has moved away under a resting pointer";
    change([&] { hasRowAbove_ = false; });
    EXPECT_EQ(heard(), "in ");
    view_.disappear();
    EXPECT_EQ(std::exchange(heard_, {}), "out ") << "a closed screen has nothing under the pointer";
}

TEST_F(InteractionTest, TabGoesFromButtonToButtonAndRoundAgain) {
    show();
    EXPECT_EQ(ring(), std::nullopt);
    const Rect rings[] = {{{-2, -2}, {64, 24}}, {{-2, 18}, {64, 24}}, {{-2, 38}, {64, 24}}};
    for (const int at : {0, 1, 2, 0}) {
        EXPECT_TRUE(key(Key::tab));
        EXPECT_EQ(ring(), rings[at]) << at;
    }
    EXPECT_TRUE(accessible("First")->isFocused);
    for (const int at : {2, 1}) {
        EXPECT_TRUE(key(Key::backTab));
        EXPECT_EQ(ring(), rings[at]) << at;
    }
    EXPECT_FALSE(accessible("First")->isFocused);
    EXPECT_TRUE(key(Key::space));
    EXPECT_TRUE(key(Key::returnKey));
    EXPECT_EQ(heard(), "2 2 ");
    EXPECT_FALSE(key(Key::escape));
    EXPECT_FALSE(key(Key::left));
    // Whoever points needs no ring; from there the keyboard goes on.
    clickOn("second");
    EXPECT_EQ(ring(), std::nullopt);
    heard();
    EXPECT_FALSE(key(Key::space)) << "nobody sees what it would press";
    EXPECT_EQ(heard(), "");
    key(Key::tab);
    EXPECT_EQ(ring(), rings[2]);
    key(Key::space);
    EXPECT_EQ(heard(), "3 ");
    EXPECT_EQ(ring(), std::nullopt) << "what had the keyboard is gone";
    key(Key::tab);
    EXPECT_EQ(ring(), rings[0]);
    // A ring comes before everything, also at the edge, and a new showing begins without.
    EXPECT_EQ(picture_.items.back().key, "//focus");
    view_.disappear();
    show();
    EXPECT_EQ(ring(), std::nullopt);
}

TEST_F(InteractionTest, WhatIsSeenGoingIsInert) {
    show();
    view_.animate(Animation::linear(1), [&] { hasThird_ = false; });
    paint();
    paintAfter(100ms);
    ASSERT_TRUE(shows("third"));
    point(Kind::press, {30, 50});
    point(Kind::release, {30, 50});
    EXPECT_EQ(heard(), "");
    EXPECT_FALSE(accessible("Third"));
    for (int i = 0; i < 3; ++i)
        key(Key::tab);
    EXPECT_EQ(ring(), (Rect{{-2, -2}, {64, 24}})) << "two stops";
    view_.animate(Animation::linear(1), [&] { hasThird_ = true; });
    paint();
    paintAfter(100ms);
    EXPECT_TRUE(perform("Third")) << "a new one has come in its place";
}

TEST_F(InteractionTest, ActionsArePerformedByKeyAndName) {
    show();
    EXPECT_TRUE(perform("Second"));
    EXPECT_EQ(heard(), "2 ");
    EXPECT_FALSE(perform("Second", "increment"));
    EXPECT_FALSE(view_.perform("no such key", "press"));
    EXPECT_FALSE(view_.perform("", ""));
    const std::string third = accessible("Third")->key;
    EXPECT_TRUE(view_.perform(third, "press"));
    paint();
    EXPECT_FALSE(view_.perform(third, "press")) << "it has left";
}

TEST_F(InteractionTest, BearsTheUserBeforeTheFirstPicture) {
    click({10, 10});
    point(Kind::scroll, {10, 10});
    EXPECT_FALSE(key(Key::tab));
    EXPECT_FALSE(key(Key::down));
    EXPECT_EQ(view_.accessibleTree().children.size(), 0U);
    EXPECT_EQ(view_.frameRate(), 0);
    EXPECT_EQ(heard(), "in ") << "where the pointer rests once there is something";
}

// An area of ten buttons of 20 points in 100 points, the last of which is an area of its own, which shows 60
// of its 120 points.
class ScrollingTest : public ScreenTest {
 protected:
    ScrollingTest() { most_ = {1000, 100}; }
    Element body() override {
        std::vector<Element> rows;
        for (int i = 0; i < rows_; ++i) {
            const std::string name = "row " + std::to_string(i);
            rows.push_back(button(name, text(name, kTen).frame({.width = 80, .height = 20}),
                                  [this, i] { pressed_ = i; }));
        }
        return scrollArea(vstack({}, std::move(rows), scrollArea(inner()).frame({.height = 60})));
    }
    Element inner() {
        return vstack({}, text("inner top", kTen).frame({.height = 60}),
                      text("inner end", kTen).frame({.height = 60}));
    }
    // Where the row is after the movement.
    double y(const std::string& text) {
        paint();
        paintAfter(1s);
        const DisplayItem* item = textItem(text);
        return item != nullptr ? std::get<DrawText>(item->command).frame.minY() - 3.75 : -1;
    }
    bool wheel(Point at, double by) {
        const DisplayList before = picture_;
        view_.pointer({Kind::scroll, at, {0, by}});
        paint();
        advance(1s);
        return paint() != before;
    }

    int rows_ = 10;
    int pressed_ = -1;
};

TEST_F(ScrollingTest, TheWheelMovesTheInnermostAreaThatCanGoOn) {
    show();
    EXPECT_EQ(picture_.size.height, 100);
    EXPECT_EQ(y("row 0"), 0);
    wheel({10, 10}, 40);
    EXPECT_EQ(y("row 2"), 0);
    EXPECT_FALSE(shows("row 0"));
    wheel({10, 10}, -1000);
    EXPECT_EQ(y("row 0"), 0) << "no further than its beginning";
    wheel({10, 10}, 1000);
    EXPECT_EQ(y("row 8"), 0) << "no further than its end";
    // The pointer is over the inner area now.
    const double top = y("inner top");
    wheel({40, 90}, 30);
    EXPECT_EQ(y("row 8"), 0) << "the inner one moves alone";
    EXPECT_EQ(y("inner top"), top - 30);
    wheel({40, 90}, -30);
    wheel({40, 90}, -40);
    EXPECT_EQ(y("row 6"), 0) << "the inner one is at its beginning: the outer one goes on";
    EXPECT_FALSE(wheel({500, 500}, 40)) << "beside it";
}

TEST_F(ScrollingTest, KeysMoveItAndAreLeftToOthersWhereItCannot) {
    show();
    struct Step {
        Key key;
        bool isUsed;
        const char* row;
        double y;
    };
    for (const Step& step : {Step{Key::up, false, "row 0", 0}, Step{Key::down, true, "row 2", 0},
                             Step{Key::pageDown, true, "row 5", 0}, Step{Key::pageUp, true, "row 2", 0},
                             Step{Key::up, true, "row 0", 0}, Step{Key::left, false, "row 0", 0}}) {
        EXPECT_EQ(key(step.key), step.isUsed) << static_cast<int>(step.key);
        EXPECT_EQ(y(step.row), step.y) << static_cast<int>(step.key);
    }
    EXPECT_TRUE(key(Key::end));
    y("row 8");
    EXPECT_TRUE(key(Key::home));
    y("row 0");
}

TEST_F(ScrollingTest, TheKeyboardBringsWhatItReachesIntoSight) {
    show();
    for (int i = 0; i < 8; ++i) {
        key(Key::tab);
        y("row 0");
    }
    EXPECT_EQ(y("row 7"), 80) << "just in sight at the lower edge";
    key(Key::space);
    EXPECT_EQ(pressed_, 7);
    // Faster than pictures come.
    key(Key::tab);
    key(Key::tab);
    EXPECT_EQ(y("row 9"), 80);
    key(Key::tab);
    EXPECT_EQ(y("row 0"), 0) << "round to the first one";
    for (int i = 0; i < 7; ++i) {
        key(Key::tab);
        paintAfter(30ms);
    }
    EXPECT_EQ(y("row 7"), 80) << "in the middle of its gliding";
}

TEST_F(ScrollingTest, WhatIsOutOfSightCannotBePressedAndShorterContentsStayAtTheEdge) {
    show();
    wheel({10, 10}, 1000);
    EXPECT_EQ(y("row 8"), 0);
    click({10, 30});
    EXPECT_EQ(pressed_, 9) << "what is seen there";
    point(Kind::press, {10, -10});
    point(Kind::release, {10, -10});
    EXPECT_EQ(pressed_, 9);
    change([&] { rows_ = 5; });
    EXPECT_EQ(y("row 3"), 0);
    change([&] { rows_ = 1; });
    EXPECT_EQ(picture_.size.height, 80);
    EXPECT_EQ(y("row 0"), 0) << "all of it fits";
}

}  // namespace
}  // namespace norvane
