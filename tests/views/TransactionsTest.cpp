#include <algorithm>

#include "views/Button.h"
#include "views/ScreenTest.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

const Animation kLinear = Animation::linear(1);
const Animation kFast = Animation::linear(0.5);

// A column of lines below a gap, painted in a colour and as opaque as it is told.
class TransactionsTest : public ScreenTest {
 protected:
    Element body() override {
        return vstack({.alignment = Alignment::start},                                                     //
                      shape(Outline::rectangle(), {.fill = fill_}).frame({.width = 100, .height = gap_}),  //
                      text("line", kTen).padding({.left = indent_}).opacity(opacity_),                     //
                      forEach(names_, [this](const std::string& name) {
                          return text(name, kTen).transition(transition_).id(name);
                      }));
    }
    // Changes it, animated, and paints, so that the movement has begun.
    void animate(const Animation& animation, const std::function<void()>& changes) {
        view_.animate(animation, changes);
        paint();
    }
    double y(const std::string& text) {
        paint();
        return frameOf(text).minY();
    }
    Color fillColor() {
        paint();
        return std::get<FillShape>(picture_.items.at(0).command).fill.from;
    }

    double gap_ = 10;
    double indent_ = 0;
    double opacity_ = 1;
    Color fill_{1, 0, 0, 1};
    std::vector<std::string> names_;
    Transition transition_;
};

TEST_F(TransactionsTest, AnAnimatedChangeMovesEverythingFromWhereItStands) {
    show();
    EXPECT_EQ(y("line"), 10);
    animate(kLinear, [&] {
        gap_ = 50;
        opacity_ = 0.5;
        fill_ = {0, 0, 1, 1};
    });
    EXPECT_EQ(y("line"), 10) << "it sets out from there";
    EXPECT_EQ(picture_.size, (Size{100, 22.5}));
    advance(500ms);
    EXPECT_NEAR(y("line"), 30, 1e-9);
    EXPECT_NEAR(opacityOf("line"), 0.75, 1e-9);
    EXPECT_NEAR(fillColor().blue, 0.5, 1e-9);
    EXPECT_NEAR(picture_.size.height, 42.5, 1e-9) << "the whole picture grows with it";
    animate(kLinear, [&] { gap_ = 10; });
    EXPECT_NEAR(y("line"), 30, 1e-9) << "back from where it stands";
    advance(500ms);
    EXPECT_NEAR(y("line"), 20, 1e-9);
    EXPECT_NEAR(opacityOf("line"), 0.5, 1e-9) << "what has not changed again goes on as it did";
    advance(500ms);
    EXPECT_EQ(y("line"), 10);
    EXPECT_EQ(picture_.size, (Size{100, 22.5}));
}

TEST_F(TransactionsTest, AChangeThatIsNotAnimatedIsThereAtOnce) {
    show();
    view_.change([&] {
        gap_ = 50;
        opacity_ = 0.5;
    });
    EXPECT_EQ(y("line"), 50);
    EXPECT_EQ(opacityOf("line"), 0.5);
    EXPECT_EQ(view_.frameRate(), 0);
}

TEST_F(TransactionsTest, TwoChangesInOneTurnEachKeepTheirOwnAnimation) {
    show();
    view_.animate(kLinear, [&] { gap_ = 50; });
    view_.animate(kFast, [&] {
        opacity_ = 0.5;
        names_ = {"below"};
    });
    paint();
    advance(250ms);
    EXPECT_NEAR(y("line"), 20, 1e-9);
    EXPECT_NEAR(opacityOf("line"), 0.75, 1e-9);
    // The same place under two of them: the later one, from where it stands.
    view_.animate(kLinear, [&] { gap_ = 100; });
    view_.animate(kFast, [&] { gap_ = 0; });
    paint();
    advance(250ms);
    EXPECT_NEAR(y("line"), 10, 1e-9);
    // One that is animated and one that is not.
    advance(10s);
    view_.animate(kLinear, [&] { opacity_ = 1; });
    change([&] { gap_ = 30; });
    advance(500ms);
    EXPECT_EQ(y("line"), 30);
    EXPECT_NEAR(opacityOf("line"), 0.75, 1e-9);
}

TEST_F(TransactionsTest, AnUpdateInTheMiddleOfAMovementDoesNotStopIt) {
    show();
    animate(kLinear, [&] {
        gap_ = 50;
        opacity_ = 0.2;
    });
    advance(500ms);
    view_.invalidate();
    EXPECT_NEAR(y("line"), 30, 1e-9);
    view_.change([&] { indent_ = 7; });
    EXPECT_NEAR(y("line"), 30, 1e-9);
    EXPECT_EQ(frameOf("line").minX(), 7);
    advance(250ms);
    EXPECT_NEAR(y("line"), 40, 1e-9);
    EXPECT_NEAR(opacityOf("line"), 0.4, 1e-9);
    view_.change([&] { gap_ = 60; });
    EXPECT_NEAR(y("line"), 50, 1e-9) << "a place that is another one at once takes the movement along";
    advance(250ms);
    EXPECT_EQ(y("line"), 60);
}

TEST_F(TransactionsTest, AnEndlessAnimationIsForLooksAlone) {
    show();
    animate(kLinear.foreverThereAndBack(), [&] {
        gap_ = 50;
        opacity_ = 0;
    });
    advance(500ms);
    EXPECT_EQ(y("line"), 50);
    EXPECT_NEAR(opacityOf("line"), 0.5, 1e-9);
    advance(2s);
    EXPECT_EQ(y("line"), 50);
    EXPECT_NEAR(opacityOf("line"), 0.5, 1e-9);
}

TEST_F(TransactionsTest, NobodySeesTheMovementsOfAClosedScreen) {
    show();
    view_.disappear();
    view_.animate(kLinear, [&] { gap_ = 50; });
    show();
    EXPECT_EQ(y("line"), 50);
    // It was closed before the next picture.
    view_.animate(kLinear, [&] {
        gap_ = 10;
        opacity_ = 0.5;
    });
    view_.disappear();
    show();
    EXPECT_EQ(y("line"), 10);
    EXPECT_EQ(opacityOf("line"), 0.5);
}

TEST_F(TransactionsTest, WhatComesComesInAndWhatGoesIsSeenGoing) {
    names_ = {"a", "b"};
    show();
    animate(kLinear, [&] { names_ = {"a", "new", "b"}; });
    EXPECT_EQ(opacityOf("new"), 0);
    paintAfter(500ms);
    EXPECT_NEAR(opacityOf("new"), 0.5, 1e-9);
    EXPECT_NEAR(y("b"), 41.25, 1e-9) << "half a line down";
    paintAfter(500ms);
    EXPECT_EQ(opacityOf("new"), 1);
    EXPECT_EQ(y("b"), 47.5);

    animate(kLinear, [&] { names_ = {"a", "b"}; });
    paintAfter(500ms);
    EXPECT_NEAR(opacityOf("new"), 0.5, 1e-9);
    EXPECT_EQ(y("new"), 35) << "it goes where it stood";
    EXPECT_NEAR(y("b"), 41.25, 1e-9);
    EXPECT_FALSE(accessible("new"));
    paintAfter(600ms);
    EXPECT_FALSE(shows("new"));
    EXPECT_EQ(y("b"), 35);
}

TEST_F(TransactionsTest, TransitionsComeFromTheirEdges) {
    struct Case {
        const char* name;
        Transition transition;
        Point away;  // where it stands at half the way, from its place
        double opacity;
    };
    for (const Case& c : {Case{"fade", Transition::opacity(), {0, 0}, 0.5},
                          Case{"bottom", Transition::move(Edge::bottom), {0, 6.25}, 1},
                          Case{"leading", Transition::move(Edge::leading), {-6, 0}, 1},
                          Case{"trailing", Transition::move(Edge::trailing), {6, 0}, 1},
                          Case{"both", Transition::move(Edge::top).withOpacity(), {0, -6.25}, 0.5}}) {
        names_.clear();
        transition_ = c.transition;
        view_.change([] {});
        show();
        const Point place{0, 22.5};
        const auto expectHalfWay = [&](const char* which) {
            paint();
            const Rect frame = frameOf("it");
            EXPECT_NEAR(frame.minX(), place.x + c.away.x, 1e-9) << c.name << which;
            EXPECT_NEAR(frame.minY(), place.y + c.away.y, 1e-9) << c.name << which;
            EXPECT_NEAR(opacityOf("it"), c.opacity, 1e-9) << c.name << which;
        };
        animate(kLinear, [&] { names_ = {"it"}; });
        advance(500ms);
        expectHalfWay(" in");
        paintAfter(500ms);
        EXPECT_EQ(frameOf("it").origin, place) << c.name;
        animate(kLinear, [&] { names_ = {}; });
        advance(500ms);
        // The panel shrinks below it meanwhile; it keeps its own place.
        expectHalfWay(" out");
        paintAfter(1s);
        EXPECT_FALSE(shows("it")) << c.name;
    }
    transition_ = Transition::none();
    names_ = {"it"};
    change([] {});
    animate(kLinear, [&] { names_ = {}; });
    EXPECT_FALSE(shows("it")) << "without a transition it is gone at once";
}

TEST_F(TransactionsTest, GoingBackAndForthQuicklyEndsWhereItShallAndPilesNothingUp) {
    names_ = {"a"};
    show();
    std::size_t most = 0;
    for (int i = 0; i < 100; ++i) {
        animate(Animation::spring(0.4, 0.8), [&] {
            names_ = i % 2 == 0 ? std::vector<std::string>{"a", "b"} : std::vector<std::string>{"a"};
        });
        paintAfter(15ms);
        most = std::max(most, picture_.items.size());
    }
    EXPECT_LT(most, 20U);
    paintAfter(10s);
    EXPECT_FALSE(shows("b"));
    EXPECT_EQ(view_.frameRate(), 0);
    EXPECT_EQ(y("a"), 22.5);
}

TEST_F(TransactionsTest, EqualNamesDoNoHarm) {
    names_ = {"a", "a", "a"};
    show();
    EXPECT_EQ(picture_.size.height, 60);
    animate(kLinear, [&] { names_ = {"a", "b", "a"}; });
    paintAfter(500ms);
    EXPECT_NEAR(opacityOf("b"), 0.5, 1e-9);
    advance(1s);
    animate(kLinear, [&] { names_ = {}; });
    paintAfter(2s);
    EXPECT_FALSE(shows("a"));
    EXPECT_EQ(picture_.size.height, 22.5);
}

}  // namespace
}  // namespace norvane
