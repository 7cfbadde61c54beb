#include "views/Button.h"
#include "views/ScreenTest.h"
#include "views/ScrollArea.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Kind = PointerEvent::Kind;
using Key = KeyEvent::Key;

// Three buttons below one another, 60 x 20 points each: the first tells whether the pointer is over it, the
// second can be turned off, the third leaves when it is pressed. A figure below them is moved and enlarged.
class InteractionTest : public ScreenTest {
 protected:
    Element body() override {
        const Accessible second{.role = AccessibleRole::toggle,
                                .name = "Second",
                                .isOn = true,
                                .actions = {{"increment", [this] { heard_ += "more "; }}}};
        const Accessible figure{.role = AccessibleRole::meter, .name = "CPU", .value = "42 %"};
        return vstack(
            {}, when(hasRowAbove_, [] { return label("").accessibleHidden(); }),
            button("First", label(isOver_ ? "<first>" : "first").onHover([this](bool isOver) {
                heard_ += isOver ? "in " : "out ";
                view_.change([&] { isOver_ = isOver; });
            }),
                   [this] { heard_ += "1 "; }),
            button(second, label("second"), [this] { heard_ += "2 "; }, {.isEnabled = isSecondEnabled_}),
            when(hasThird_,
                 [this] {
                     return button("Third", label("third"), [this] {
                         heard_ += "3 ";
                         view_.change([this] { hasThird_ = false; });
                     });
                 }),
            text("42", kTen).accessible(figure).offset({1, 0}).scaled(2).opacity(0.5).clipped(2),
            text("silent", kTen).accessibleHidden());
    }
    static Element label(const char* words) { return text(words, kTen).frame({.width = 60, .height = 20}); }
    // What was done since it was last asked.
    std::string heard() {
        paint();
        return std::exchange(heard_, {});
    }
    // Which of the buttons has the ring of the keyboard around it; none where none is seen.
    std::optional<int> ringed() {
        paint();
        if (picture_.items.back().key != "//focus") return std::nullopt;
        const Rect ring = boundsOf(std::get<StrokeShape>(picture_.items.back().command).shape);
        EXPECT_EQ(ring.size, (Size{64, 24}));
        return static_cast<int>(ring.midY() / 20);
    }

    bool hasRowAbove_ = false;
    bool isSecondEnabled_ = true;
    bool hasThird_ = true;
    bool isOver_ = false;
    std::string heard_;
};

TEST_F(InteractionTest, TellsThoseWhoDoNotSeeItWhatThereIs) {
    show();
    key(Key::tab);
    key(Key::tab);
    paint();
    const auto nodes = view_.accessibleTree().children;
    ASSERT_EQ(nodes.size(), 4U) << "what is hidden is left out";
    const AccessibleNode& second = nodes[1];
    EXPECT_EQ(second.isOn, true);
    EXPECT_EQ(second.frame, (Rect{{0, 20}, {60, 20}}));
    EXPECT_EQ(second.actions, (std::vector<std::string>{"press", "increment"}));
    EXPECT_TRUE(second.isFocusable && second.isFocused);
    AccessibleNode figure;
    figure.key = nodes[3].key;
    figure.role = AccessibleRole::meter;
    figure.name = "CPU";
    figure.value = "42 %";
    figure.frame = {{20, 53.75}, {24, 25}};
    EXPECT_EQ(nodes[3], figure) << "where it is seen, without its text";
    change([&] { hasRowAbove_ = true; });
    EXPECT_EQ(accessible("Second")->key, second.key) << "the same thing keeps its key";
    EXPECT_TRUE(perform("Second", "increment"));
    EXPECT_TRUE(perform("Second"));
    EXPECT_FALSE(perform("Second", "decrement"));
    EXPECT_EQ(heard(), "more 2 ");
}

TEST_F(InteractionTest, BearsTheUserBeforeTheFirstPicture) {
    click({10, 10});
    point(Kind::scroll, {10, 10});
    EXPECT_FALSE(key(Key::tab) || key(Key::down));
    EXPECT_EQ(view_.accessibleTree().children.size(), 0U);
    EXPECT_EQ(view_.frameRate(), 0);
    EXPECT_EQ(heard(), "in ") << "where the pointer rests once there is something";
}

TEST_F(InteractionTest, AButtonActsWhenPressedAndReleasedOverIt) {
    show();
    const Point second{30, 30}, third{30, 50};
    struct Step {
        Kind kind;
        Point at;
        bool isHeld;
        const char* why;
    };
    for (const Step& step :
         {Step{Kind::press, second, true, "held down"}, Step{Kind::move, third, false, "left"},
          Step{Kind::move, second, true, "come back"},
          Step{Kind::release, third, false, "released elsewhere"},
          Step{Kind::release, second, false, "not pressed"}, Step{Kind::press, second, true, "pressed again"},
          Step{Kind::leave, {}, false, "away"}, Step{Kind::release, second, false, "left in between"}}) {
        point(step.kind, step.at);
        EXPECT_EQ(heard(), "") << step.why;
        EXPECT_NEAR(shown("second").opacity, step.isHeld ? 0.55 : 1, 1e-9) << step.why;
    }
    click(second);
    EXPECT_EQ(heard(), "2 ");
    point(Kind::press, third);
    change([] {});
    point(Kind::release, third);
    EXPECT_EQ(heard(), "3 ") << "an evaluation in between keeps the press";
    EXPECT_FALSE(shows("third")) << "the action takes its button away";
}

TEST_F(InteractionTest, ADisabledButtonIsDimmedAndDoesNothing) {
    isSecondEnabled_ = false;
    show();
    EXPECT_NEAR(shown("second").opacity, 0.35, 1e-9);
    click({30, 30});
    EXPECT_FALSE(accessible("Second")->isEnabled);
    EXPECT_FALSE(perform("Second"));
    EXPECT_EQ(heard(), "");
    key(Key::tab);
    key(Key::tab);
    EXPECT_EQ(ringed(), 2) << "the keyboard passes it by";
}

TEST_F(InteractionTest, HoverFollowsThePointerAndWhatStandsUnderIt) {
    show();
    point(Kind::move, {10, 5});
    EXPECT_EQ(heard(), "in ");
    EXPECT_TRUE(shows("<first>")) << "its label is another one now, and still hovered";
    point(Kind::leave);
    EXPECT_EQ(heard(), "out ");
    point(Kind::move, {10, 5});
    heard();
    change([&] { hasRowAbove_ = true; });
    EXPECT_EQ(heard(), "out ") << "it has moved away under a resting pointer";
    change([&] { hasRowAbove_ = false; });
    EXPECT_EQ(heard(), "in ");
    view_.disappear();
    EXPECT_EQ(heard_, "out ") << "a closed screen has nothing under the pointer";
}

TEST_F(InteractionTest, TabGoesFromButtonToButtonAndRoundAgain) {
    show();
    EXPECT_EQ(ringed(), std::nullopt);
    for (const int want : {0, 1, 2, 0, -2, -1}) {
        EXPECT_TRUE(key(want < 0 ? Key::backTab : Key::tab));
        EXPECT_EQ(ringed(), std::abs(want));
    }
    EXPECT_TRUE(key(Key::space) && key(Key::returnKey));
    EXPECT_EQ(heard(), "2 2 ");
    EXPECT_FALSE(key(Key::escape) || key(Key::left));
    click({30, 30});
    EXPECT_EQ(ringed(), std::nullopt) << "whoever points needs no ring";
    heard();
    EXPECT_FALSE(key(Key::space)) << "nobody sees what it would press";
    key(Key::tab);
    EXPECT_EQ(ringed(), 2) << "from there the keyboard goes on";
    key(Key::space);
    EXPECT_EQ(heard(), "3 ");
    EXPECT_EQ(ringed(), std::nullopt) << "what had the keyboard is gone";
    key(Key::tab);
    EXPECT_EQ(ringed(), 0);
    view_.disappear();
    show();
    EXPECT_EQ(ringed(), std::nullopt) << "a new showing begins without";
}

TEST_F(InteractionTest, WhatIsGoneOrSeenGoingIsInert) {
    show();
    const std::string third = accessible("Third")->key;
    animate(Animation::linear(1), [&] { hasThird_ = false; });
    paintAfter(100ms);
    ASSERT_TRUE(shows("third"));
    click({30, 50});
    EXPECT_EQ(heard(), "");
    EXPECT_FALSE(accessible("Third"));
    EXPECT_FALSE(view_.perform(third, "press"));
    EXPECT_FALSE(view_.perform("", ""));
    for (int i = 0; i < 3; ++i)
        key(Key::tab);
    EXPECT_EQ(ringed(), 0) << "two stops";
    animate(Animation::linear(1), [&] { hasThird_ = true; });
    paintAfter(100ms);
    EXPECT_TRUE(perform("Third")) << "a new one has come in its place";
}

// An area of ten buttons of 20 points in 100 points, the last of which is an area of its own, which shows 60
// of its 120 points.
class ScrollingTest : public ScreenTest {
 protected:
    ScrollingTest() {
        most_.height = 100;
        show();
    }
    Element body() override {
        std::vector<Element> rows;
        for (int i = 0; i < rows_; ++i) {
            const std::string name = "row " + std::to_string(i);
            rows.push_back(button(name, text(name, kTen).frame({.width = 80, .height = 20}),
                                  [this, i] { pressed_ = i; }));
        }
        const auto half = [](const char* words) { return text(words, kTen).frame({.height = 60}); };
        return scrollArea(
            vstack({}, std::move(rows),
                   scrollArea(vstack({}, half("inner top"), half("inner end"))).frame({.height = 60})));
    }
    // Where the row is after the movement.
    double y(const std::string& text) {
        paint();
        paintAfter(1s);
        return frameOf(text).minY() - 3.75;
    }
    void wheel(Point at, double by) {
        view_.pointer({Kind::scroll, at, {0, by}});
        paint();
        paintAfter(1s);
    }

    int rows_ = 10;
    int pressed_ = -1;
};

TEST_F(ScrollingTest, TheWheelMovesTheInnermostAreaThatCanGoOn) {
    EXPECT_EQ(picture_.size.height, 100);
    wheel({10, 10}, 40);
    EXPECT_EQ(y("row 2"), 0);
    EXPECT_FALSE(shows("row 0"));
    wheel({10, 10}, 1000);
    EXPECT_EQ(y("row 8"), 0) << "no further than its end";
    click({10, 30});
    EXPECT_EQ(pressed_, 9) << "what is seen there";
    click({10, -10});
    EXPECT_EQ(pressed_, 9) << "and not what is out of sight";
    // The pointer is over the inner area now.
    const double top = y("inner top");
    wheel({40, 90}, 30);
    EXPECT_EQ(y("row 8"), 0) << "the inner one moves alone";
    EXPECT_EQ(y("inner top"), top - 30);
    wheel({40, 90}, -30);
    wheel({40, 90}, -40);
    EXPECT_EQ(y("row 6"), 0) << "the inner one is at its beginning: the outer one goes on";
    change([&] { rows_ = 5; });
    EXPECT_EQ(y("row 3"), 0) << "shorter contents stay at the edge";
}

TEST_F(ScrollingTest, KeysMoveItAndAreLeftToOthersWhereItCannot) {
    struct Step {
        Key key;
        bool isUsed;
        const char* first;  // of the rows
    };
    for (const Step& step :
         {Step{Key::up, false, "row 0"}, Step{Key::down, true, "row 2"}, Step{Key::pageDown, true, "row 5"},
          Step{Key::pageUp, true, "row 2"}, Step{Key::left, false, "row 2"}, Step{Key::end, true, "row 8"},
          Step{Key::home, true, "row 0"}}) {
        EXPECT_EQ(key(step.key), step.isUsed) << static_cast<int>(step.key);
        EXPECT_EQ(y(step.first), 0) << static_cast<int>(step.key);
    }
}

TEST_F(ScrollingTest, TheKeyboardBringsWhatItReachesIntoSight) {
    for (int i = 0; i < 8; ++i) {
        key(Key::tab);
        paintAfter(30ms);
    }
    EXPECT_EQ(y("row 7"), 80) << "just in sight at the lower edge, in the middle of its gliding";
    // Faster than pictures come.
    key(Key::tab);
    key(Key::tab);
    EXPECT_EQ(y("row 9"), 80);
    key(Key::space);
    EXPECT_EQ(pressed_, 9);
    key(Key::tab);
    EXPECT_EQ(y("row 0"), 0) << "round to the first one";
}

}  // namespace
}  // namespace norvane
