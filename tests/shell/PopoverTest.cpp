#include "shell/Popover.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "platform/scripted/ScriptedMachine.h"
#include "platform/scripted/ScriptedPopoverWindow.h"
#include "shell/ScreenClamp.h"
#include "views/HostedView.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr Rect kAnchor{{700, 0}, {54, 22}};

// A popover of 100 x 40 points below an anchor in the middle of the screen, and a delegate that writes down
// what it hears.
class PopoverTest : public testing::Test, private PopoverDelegate {
 protected:
    PopoverTest() { popover_.setDelegate(this); }

    void show() {
        popover_.showBelow(kAnchor);
        machine_.settle();
        heard_.clear();
    }
    std::size_t onScreen() const { return machine_.windowServer.windows().size(); }

    void popoverWillShow(Popover& popover) override { heard_ += popover.isShown() ? "?" : "will "; }
    bool popoverShouldClose(Popover& popover) override {
        heard_ += popover.isShown() ? "should " : "?";
        return mayClose_;
    }
    void popoverDidClose(Popover& popover) override { heard_ += popover.isShown() ? "?" : "did "; }

    ScriptedMachine machine_;
    int appearances_ = 0;
    double height_ = 40;
    HostedView content_{
        [this] {
            return text("", {}).frame({.width = 100, .height = height_}).onAppear([this] { ++appearances_; });
        },
        machine_.platform()};
    Popover popover_{machine_.windowServer, machine_.dispatch.mainQueue(), content_};
    bool mayClose_ = true;
    std::string heard_;
};

TEST_F(PopoverTest, ComesUpAfterTheTurnInWhichItIsMovedUnlessItIsClosedBefore) {
    popover_.showBelow(kAnchor);
    popover_.performClose();
    machine_.settle();
    EXPECT_EQ(onScreen(), 0U);
    EXPECT_EQ(std::exchange(heard_, ""), "will should did ");
    popover_.showBelow(kAnchor);
    popover_.performClose();
    popover_.showBelow(kAnchor);
    EXPECT_EQ(onScreen(), 0U);
    machine_.dispatch.mainQueue().async([&] {
        EXPECT_EQ(onScreen(), 0U);
        popover_.window()->setFrame({{500, 28}, {100, 40}});
    });
    machine_.settle();
    ASSERT_EQ(onScreen(), 1U) << "the later showing holds";
    EXPECT_EQ(machine_.windowServer.windows()[0]->placesShown(), std::vector<Point>({{500, 28}}))
        << "nothing jumped";
    heard_.clear();
    for (const auto& [anchor, left] : {std::pair{700.0, 500.0}, std::pair{100.0, 77.0}}) {
        popover_.showBelow({{anchor, 0}, {54, 22}});
        machine_.settle();
        EXPECT_EQ(popover_.window()->frame().origin, (Point{left, 28})) << "it goes with its anchor";
    }
    popover_.performClose();
    popover_.performClose();
    EXPECT_EQ(heard_, "should did ") << "shown again and closed again is nothing new";
    EXPECT_EQ(popover_.window(), nullptr);
}

TEST_F(PopoverTest, EveryWayOfClosingAsksFirst) {
    struct Case {
        PopoverBehavior behavior;
        bool outside, focusLost;  // whether it closes
    };
    for (const Case& c :
         {Case{PopoverBehavior::applicationDefined, false, false},
          Case{PopoverBehavior::transient, true, true}, Case{PopoverBehavior::semitransient, true, false}}) {
        popover_.setBehavior(c.behavior);
        const auto expect = [&](const char* way, bool closes, auto&& act) {
            show();
            for (const bool may : {false, true}) {
                popover_.window()->makeKeyWindow();
                mayClose_ = may;
                act();
                EXPECT_EQ(std::exchange(heard_, ""), !closes ? "" : may ? "should did " : "should ") << way;
                EXPECT_EQ(onScreen(), closes && may ? 0U : 1U) << way << static_cast<int>(c.behavior);
            }
            popover_.performClose();
        };
        expect("Esc", true, [&] { machine_.windowServer.press(KeyEvent::Key::escape); });
        expect("outside", c.outside, [&] { machine_.windowServer.click({10, 900}); });
        expect("inside", false, [&] { machine_.windowServer.click({720, 40}); });
        expect("focus", c.focusLost, [&] { machine_.windowServer.focusElsewhere(); });
    }
}

TEST_F(PopoverTest, ItsContentLivesFromEachShowingToItsClosing) {
    show();
    EXPECT_EQ(appearances_, 1);
    mayClose_ = false;
    popover_.performClose();
    show();
    EXPECT_EQ(appearances_, 1) << "it has been there all the time";
    mayClose_ = true;
    popover_.performClose();
    height_ = 90;
    content_.animate(Animation::linear(1), [] {});
    show();
    EXPECT_EQ(appearances_, 2);
    EXPECT_EQ(popover_.window()->frame(), (Rect{{677, 28}, {100, 90}})) << "at its new size at once";
    content_.animate(Animation::linear(1), [&] { height_ = 40; });
    machine_.settle();
    EXPECT_EQ(popover_.window()->frame().size.height, 40);
    machine_.advance(500ms);
    EXPECT_EQ(machine_.windowServer.windows().at(0)->picture().size.height, 65)
        << "the panel in it is on its way";
}

TEST(ScreenClamp, KeepsEightPointsOnBothSidesTheLeftOneLast) {
    const Rect screen{{100, 22}, {1000, 700}};
    for (const auto& [x, width, want] :
         {std::tuple{400.0, 520.0, 400.0}, {700, 520, 572}, {90, 520, 108}, {300, 1200, 108}})
        EXPECT_EQ(clampedToScreen({{x, 30}, {width, 50}}, screen), (Rect{{want, 30}, {width, 50}}));
}

}  // namespace
}  // namespace norvane
