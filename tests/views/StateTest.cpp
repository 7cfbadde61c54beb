#include <limits>
#include <string>

#include "views/Button.h"
#include "views/ScreenTest.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// A counter that counts up when it is pressed, with what it tells of its life.
class StateTest : public ScreenTest {
 protected:
    Element counter(const std::string& name) {
        return stateful<int>(0, [this, name](const State<int>& count) {
            ++counterEvaluations_;
            states_.emplace_back(name, count);
            return button(name, text(name + '=' + std::to_string(*count), kTen),
                          [count] { count.change([](int& number) { ++number; }); })
                .onAppear([this, name, count] {
                    heard_ += name + "+ ";
                    found_ = *count;
                });
        });
    }
    const State<int>& stateOf(const std::string& name) const {
        const State<int>* found = nullptr;
        for (const auto& [of, state] : states_) {
            if (of == name) found = &state;
        }
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    Element body() override {
        return vstack({}, when(showsFirst_, [this] { return counter("first"); }), counter("second"),
                      forEach(names_, [this](const std::string& name) { return counter(name).id(name); }),
                      text("end", kTen).onChange(watched_, [this] {
                          heard_ += "changed ";
                          if (followUp_) followUp_();
                      }));
    }
    std::string heard() { return std::exchange(heard_, {}); }

    bool showsFirst_ = true;
    std::vector<std::string> names_;
    double watched_ = 0;
    std::function<void()> followUp_;
    std::vector<std::pair<std::string, State<int>>> states_;
    int counterEvaluations_ = 0;
    std::string heard_;
    int found_ = -1;  // by the last that appeared
};

TEST_F(StateTest, LastsForAsLongAsItsPartIsInTheTree) {
    show();
    perform("second");
    perform("second");
    paint();
    EXPECT_TRUE(shows("second=2"));
    change([] {});
    EXPECT_TRUE(shows("second=2")) << "an evaluation of everything";
    change([&] { showsFirst_ = false; });
    EXPECT_TRUE(shows("second=2")) << "what was before it is absent: it is still who it was";
    view_.disappear();
    show();
    EXPECT_TRUE(shows("second=2")) << "closed in between";
    change([&] { showsFirst_ = true; });
    perform("first");
    paint();
    EXPECT_TRUE(shows("first=1"));
    change([&] { showsFirst_ = false; });
    change([&] { showsFirst_ = true; });
    EXPECT_TRUE(shows("first=0")) << "it had left";
}

TEST_F(StateTest, FollowsItsPartByNameWhereverItGoes) {
    names_ = {"a", "b", "c"};
    show();
    perform("b");
    change([&] { names_ = {"c", "x", "b"}; });
    EXPECT_TRUE(shows("b=1"));
    EXPECT_TRUE(shows("c=0"));
    EXPECT_GT(frameOf("b=1").minY(), frameOf("c=0").minY());
    names_ = {"b", "b", "b/b", "b|b"};
    change([] {});
    EXPECT_TRUE(shows("b=1"));
    EXPECT_TRUE(shows("b=0")) << "of two of one name the second is another one";
    EXPECT_TRUE(shows("b/b=0"));
}

TEST_F(StateTest, AChangeEvaluatesOnlyItsOwnPart) {
    show();
    const int whole = evaluations_;
    const int parts = counterEvaluations_;
    const std::string second = accessible("second")->key;
    view_.perform(second, "press");
    view_.perform(second, "press");
    EXPECT_EQ(counterEvaluations_, parts) << "not before the next picture";
    paint();
    EXPECT_EQ(evaluations_, whole);
    EXPECT_EQ(counterEvaluations_, parts + 1);
    view_.perform(second, "press");
    change([] {});
    EXPECT_EQ(counterEvaluations_, parts + 3) << "along with everything else, and not twice";
    EXPECT_TRUE(shows("second=3"));
}

TEST_F(StateTest, WhatHasLeftCanBeChangedWithoutEffect) {
    show();
    const State<int> first = stateOf("first");
    view_.animate(Animation::linear(1), [&] { showsFirst_ = false; });
    paint();
    paintAfter(500ms);
    ASSERT_TRUE(shows("first=0")) << "seen going";
    int told = 0;
    view_.setChangeHandler([&] { ++told; });
    first.change([](int& number) { ++number; });
    first.animate(Animation::linear(1), [](int& number) { ++number; });
    first.later([&] { ADD_FAILURE(); });
    machine_.settle();
    EXPECT_EQ(told, 0);
    advance(1s);
    change([] {});
    first.change([](int& number) { ++number; });
    paint();
    EXPECT_FALSE(shows("first=0"));
}

// Two animations in one turn evaluate in between: what the first brought may be gone when its handlers run.
TEST_F(StateTest, CanBeReadByAHandlerThatOutlivesItsPart) {
    show();
    view_.change([&] { names_ = {"a"}; });
    view_.animate(Animation::linear(1), [] {});
    view_.change([&] { names_ = {}; });
    found_ = -1;
    paint();
    EXPECT_EQ(heard(), "first+ second+ a+ ");
    EXPECT_EQ(found_, 0);
    EXPECT_FALSE(shows("a=0"));
}

TEST_F(StateTest, AppearsWithEachShowingAndWhenItJoins) {
    show();
    EXPECT_EQ(heard(), "first+ second+ ");
    paint();
    change([] {});
    EXPECT_EQ(heard(), "");
    change([&] { names_ = {"a"}; });
    EXPECT_EQ(heard(), "a+ ");
    view_.disappear();
    view_.change([&] { names_ = {"a", "b"}; });
    EXPECT_EQ(heard(), "");
    show();
    EXPECT_EQ(heard(), "first+ second+ a+ b+ ") << "each once";
    view_.appear();
    paint();
    EXPECT_EQ(heard(), "") << "it was on the screen already";
}

TEST_F(StateTest, TellsOfAValueThatChanged) {
    show();
    heard();
    change([] {});
    EXPECT_EQ(heard(), "") << "the same";
    view_.change([&] { watched_ = 1; });
    EXPECT_EQ(heard(), "") << "not before it is evaluated";
    paint();
    EXPECT_EQ(heard(), "changed ");
    view_.change([&] { watched_ = 2; });
    change([&] { watched_ = 1; });
    EXPECT_EQ(heard(), "") << "back before anybody looked";
}

TEST_F(StateTest, WhatIsNoNumberDoesNotChangeForEver) {
    show();
    heard();
    followUp_ = [this] { view_.invalidate(); };
    change([&] { watched_ = std::numeric_limits<double>::quiet_NaN(); });
    change([] {});
    EXPECT_EQ(heard(), "changed ");
    change([&] { watched_ = 1; });
    EXPECT_EQ(heard(), "changed ");
}

TEST_F(StateTest, AClosedScreenIsNeverEvaluated) {
    show();
    view_.disappear();
    const int whole = evaluations_;
    const int parts = counterEvaluations_;
    for (int i = 0; i < 10; ++i) {
        view_.change([&] { ++watched_; });
        view_.animate(Animation::linear(1), [&] { ++watched_; });
        view_.invalidate();
        stateOf("second").change([](int& number) { ++number; });
        machine_.appearance.setDark(i % 2 == 0);
        advance(1s);
    }
    EXPECT_EQ(evaluations_, whole);
    EXPECT_EQ(counterEvaluations_, parts);
    heard();
    show();
    EXPECT_EQ(evaluations_, whole + 1);
    EXPECT_TRUE(shows("second=10"));
    EXPECT_EQ(heard(), "changed first+ second+ ");
}

TEST_F(StateTest, WhatShallHappenLaterWaitsForTheScreen) {
    show();
    int ran = 0;
    stateOf("second").later([&] { ++ran; });
    EXPECT_EQ(ran, 0);
    machine_.settle();
    EXPECT_EQ(ran, 1);
    stateOf("second").later([&] { ++ran; });
    view_.disappear();
    advance(1h);
    EXPECT_EQ(ran, 1);
    show();
    machine_.settle();
    EXPECT_EQ(ran, 2);
}

TEST_F(StateTest, LaterThanTheScreenNothingHappens) {
    int ran = 0;
    {
        HostedView other([this] { return counter("other"); }, machine_.platform());
        other.appear();
        other.fittingSize({100, 100});
        stateOf("other").later([&] { ++ran; });
    }
    machine_.settle();
    stateOf("other").change([](int& number) { ++number; });
    EXPECT_EQ(ran, 0);
}

TEST_F(StateTest, HandlersThatLeadToChangesEndAndCarryOnWithTheNextPicture) {
    show();
    followUp_ = [this] { view_.change([this] { ++watched_; }); };
    view_.change([&] { ++watched_; });
    const int before = evaluations_;
    paint();
    EXPECT_GT(evaluations_, before + 1) << "what follows at once is shown at once";
    EXPECT_LT(evaluations_, before + 100);
    const int between = evaluations_;
    paint();
    EXPECT_GT(evaluations_, between);
    followUp_ = nullptr;
    paint();
    const int last = evaluations_;
    paint();
    EXPECT_EQ(evaluations_, last);
}

TEST_F(StateTest, AHandlerMayAnimateWhatItFinds) {
    show();
    followUp_ = [this] { view_.animate(Animation::linear(1), [this] { names_ = {"a"}; }); };
    change([&] { ++watched_; });
    followUp_ = nullptr;
    EXPECT_EQ(opacityOf("a=0"), 0);
    paintAfter(500ms);
    EXPECT_NEAR(opacityOf("a=0"), 0.5, 1e-9);
}

}  // namespace
}  // namespace norvane
