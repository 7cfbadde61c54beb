#include <limits>

#include "views/Button.h"
#include "views/ScreenTest.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

void countUp(int& number) {
    ++number;
}

// Counters that count up when they are pressed, with what they tell of their lives.
class StateTest : public ScreenTest {
 protected:
    StateTest() { show(); }
    Element counter(const std::string& name) {
        return stateful<int>(0, [this, name](const State<int>& count) {
            ++counterEvaluations_;
            states_.insert_or_assign(name, count);
            return button(name, text(name + '=' + std::to_string(*count), kTen),
                          [count] { count.change(countUp); })
                .onAppear([this, name, count] {
                    heard_ += name + "+ ";
                    found_ = *count;
                });
        });
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
    std::map<std::string, State<int>> states_;
    int counterEvaluations_ = 0;
    std::string heard_;
    int found_ = -1;  // by the last that appeared
};

TEST_F(StateTest, LastsForAsLongAsItsPartIsInTheTree) {
    perform("second");
    change([&] { showsFirst_ = false; });
    EXPECT_TRUE(shows("second=1")) << "what was before it is absent: it is still who it was";
    view_.disappear();
    show();
    EXPECT_TRUE(shows("second=1")) << "closed in between";
    change([&] { showsFirst_ = true; });
    perform("first");
    paint();
    EXPECT_TRUE(shows("first=1"));
    change([&] { showsFirst_ = false; });
    change([&] { showsFirst_ = true; });
    EXPECT_TRUE(shows("first=0")) << "it had left";

    change([&] { names_ = {"a", "b", "c"}; });
    perform("b");
    change([&] { names_ = {"c", "x", "b"}; });
    EXPECT_GT(frameOf("b=1").minY(), frameOf("c=0").minY()) << "it follows its part by name";
    change([&] { names_ = {"b", "x", "c"}; });
    EXPECT_LT(frameOf("b=1").minY(), frameOf("c=0").minY()) << "also where all are of one size";
    change([&] { names_ = {"b", "b", "b/b", "b|b"}; });
    EXPECT_TRUE(shows("b=1") && shows("b=0")) << "of two of one name the second is another one";
    EXPECT_TRUE(shows("b/b=0"));
}

TEST_F(StateTest, AChangeEvaluatesOnlyItsOwnPart) {
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
    const State<int> first = states_.at("first");
    animate(Animation::linear(1), [&] { showsFirst_ = false; });
    paintAfter(500ms);
    ASSERT_TRUE(shows("first=0")) << "seen going";
    int told = 0;
    view_.setChangeHandler([&] { ++told; });
    for (const auto after : {0s, 1s}) {
        paintAfter(after);
        first.change(countUp);
        first.animate(Animation::linear(1), countUp);
        first.later([&] { ADD_FAILURE(); });
        machine_.settle();
    }
    EXPECT_EQ(told, 0);
    {
        HostedView other([this] { return counter("other"); }, machine_.platform());
        other.appear();
        other.fittingSize({100, 100});
        states_.at("other").later([&] { ADD_FAILURE() << "the screen has left"; });
    }
    machine_.settle();
    states_.at("other").change(countUp);
}

// Two animations in one turn evaluate in between: what the first brought may be gone when its handlers run.
TEST_F(StateTest, CanBeReadByAHandlerThatOutlivesItsPart) {
    heard();
    view_.change([&] { names_ = {"a"}; });
    view_.animate(Animation::linear(1), [] {});
    view_.change([&] { names_ = {}; });
    found_ = -1;
    paint();
    EXPECT_EQ(heard(), "a+ ");
    EXPECT_EQ(found_, 0);
    EXPECT_FALSE(shows("a=0"));
}

TEST_F(StateTest, AClosedScreenIsNeverEvaluatedAndAppearsAgainWithAllThatCameMeanwhile) {
    EXPECT_EQ(heard(), "first+ second+ ");
    change([&] { names_ = {"a"}; });
    EXPECT_EQ(heard(), "a+ ") << "each once";
    int ran = 0;
    states_.at("second").later([&] { ++ran; });
    EXPECT_EQ(ran, 0);
    machine_.settle();
    EXPECT_EQ(ran, 1);
    states_.at("second").later([&] { ++ran; });
    view_.disappear();
    const int whole = evaluations_;
    const int parts = counterEvaluations_;
    for (int i = 0; i < 3; ++i) {
        view_.change([&] { ++watched_; });
        view_.animate(Animation::linear(1), [&] { names_ = {"a", "b"}; });
        view_.invalidate();
        states_.at("second").change(countUp);
        machine_.appearance.setDark(i % 2 == 0);
        advance(1s);
    }
    EXPECT_EQ(ran, 1) << "what shall happen later waits for the screen";
    EXPECT_EQ(evaluations_, whole);
    EXPECT_EQ(counterEvaluations_, parts);
    show();
    view_.appear();
    paint();
    EXPECT_EQ(evaluations_, whole + 1);
    EXPECT_TRUE(shows("second=3"));
    EXPECT_EQ(heard(), "changed first+ second+ a+ b+ ");
    machine_.settle();
    EXPECT_EQ(ran, 2);
}

TEST_F(StateTest, TellsOfAValueThatChanged) {
    const auto changeTo = [&](double value) { change([&] { watched_ = value; }); };
    heard();
    view_.change([&] { watched_ = 1; });
    changeTo(0);
    EXPECT_EQ(heard(), "") << "back before anybody looked";
    changeTo(1);
    EXPECT_EQ(heard(), "changed ");
    followUp_ = [this] { view_.invalidate(); };
    changeTo(std::numeric_limits<double>::quiet_NaN());
    change([] {});
    EXPECT_EQ(heard(), "changed ") << "what is no number does not change for ever";
    changeTo(1);
    EXPECT_EQ(heard(), "changed ");
}

TEST_F(StateTest, HandlersThatLeadToChangesEndAndCarryOnWithTheNextPicture) {
    followUp_ = [this] { view_.change([this] { ++watched_; }); };
    const int before = evaluations_;
    change([&] { ++watched_; });
    EXPECT_GT(evaluations_, before + 1) << "what follows at once is shown at once";
    EXPECT_LT(evaluations_, before + 100);
    const int between = evaluations_;
    paint();
    EXPECT_GT(evaluations_, between);
}

}  // namespace
}  // namespace norvane
