#include "shell/Popover.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "platform/scripted/ScriptedMachine.h"
#include "platform/scripted/ScriptedPopoverWindow.h"
#include "shell/ScreenClamp.h"
#include "views/HostedView.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// A popover of 100 x 40 points below an anchor in the middle of the screen, and a delegate that writes down
// what it hears.
class PopoverTest : public testing::Test, private PopoverDelegate {
 protected:
    PopoverTest() { popover_.setDelegate(this); }

    void show() {
        popover_.showBelow({{700, 0}, {54, 22}});
        machine_.settle();
        heard_.clear();
    }
    bool isOnScreen() const { return !machine_.windowServer.windows().empty(); }

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

TEST_F(PopoverTest, ComesUpBelowItsAnchorAfterTheTurnInWhichItIsMoved) {
    popover_.showBelow({{700, 0}, {54, 22}});
    EXPECT_EQ(heard_, "will ");
    EXPECT_TRUE(popover_.isShown());
    EXPECT_FALSE(isOnScreen());
    machine_.dispatch.mainQueue().async([&] {
        EXPECT_FALSE(isOnScreen());
        popover_.window()->setFrame({{500, 28}, {100, 40}});
    });
    machine_.settle();
    ASSERT_TRUE(isOnScreen());
    EXPECT_EQ(machine_.windowServer.windows()[0]->placesShown(), std::vector<Point>({{500, 28}}))
        << "nothing jumped";
}

TEST_F(PopoverTest, AskedToCloseBeforeItCameUpItNeverDoes) {
    popover_.showBelow({{700, 0}, {54, 22}});
    popover_.performClose();
    machine_.settle();
    EXPECT_FALSE(isOnScreen());
    EXPECT_EQ(heard_, "will should did ");
    popover_.showBelow({{700, 0}, {54, 22}});
    popover_.performClose();
    popover_.showBelow({{700, 0}, {54, 22}});
    machine_.settle();
    EXPECT_EQ(machine_.windowServer.windows().size(), 1U) << "the later showing holds";
}

TEST_F(PopoverTest, EveryWayOfClosingAsksFirst) {
    struct Case {
        const char* name;
        PopoverBehavior behavior;
        bool esc, outside, focusLost;  // whether it closes
    };
    for (const Case& c :
         {Case{"application-defined", PopoverBehavior::applicationDefined, true, false, false},
          Case{"transient", PopoverBehavior::transient, true, true, true},
          Case{"semitransient", PopoverBehavior::semitransient, true, true, false}}) {
        popover_.setBehavior(c.behavior);
        const auto expect = [&](const char* way, bool closes, auto&& act) {
            for (const bool may : {false, true}) {
                mayClose_ = true;
                popover_.performClose();
                show();
                popover_.window()->makeKeyWindow();
                mayClose_ = may;
                act();
                EXPECT_EQ(heard_, !closes ? "" : may ? "should did " : "should ") << c.name << ", " << way;
                EXPECT_EQ(isOnScreen(), !(closes && may)) << c.name << ", " << way;
            }
        };
        expect("Esc", c.esc, [&] { machine_.windowServer.press(KeyEvent::Key::escape); });
        expect("outside", c.outside, [&] { machine_.windowServer.click({10, 900}); });
        expect("inside", false, [&] { machine_.windowServer.click({720, 40}); });
        expect("focus", c.focusLost, [&] { machine_.windowServer.focusElsewhere(); });
        expect("asked", true, [&] { popover_.performClose(); });
    }
}

TEST_F(PopoverTest, ShownAgainItComesToTheFrontBelowItsAnchorAndClosedAgainDoesNothing) {
    show();
    popover_.window()->setFrame({{500, 28}, {100, 40}});
    for (const auto& [anchor, left] : {std::pair{700.0, 500.0}, std::pair{100.0, 77.0}}) {
        popover_.showBelow({{anchor, 0}, {54, 22}});
        machine_.settle();
        EXPECT_EQ(heard_, "");
        EXPECT_EQ(popover_.window()->frame().origin, (Point{left, 28}));
    }
    popover_.performClose();
    popover_.performClose();
    EXPECT_EQ(heard_, "should did ");
    EXPECT_EQ(popover_.window(), nullptr);
}

TEST_F(PopoverTest, ItsContentLivesFromEachShowingToItsClosing) {
    show();
    EXPECT_EQ(appearances_, 1);
    mayClose_ = false;
    popover_.performClose();
    popover_.showBelow({{700, 0}, {54, 22}});
    machine_.settle();
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
    ScriptedPopoverWindow& window = *machine_.windowServer.windows().at(0);
    EXPECT_EQ(window.picture().size.height, 65) << "the panel in it is on its way";
}

TEST(ScreenClamp, KeepsEightPointsOnBothSidesTheLeftOneLast) {
    const Rect screen{{100, 22}, {1000, 700}};
    struct Case {
        const char* name;
        double x, width, want;
    };
    for (const Case& c : {Case{"in the middle", 400, 520, 400},
                          {"beyond the right", 700, 520, 572},
                          {"beyond the left", 90, 520, 108},
                          {"wider than the screen", 300, 1200, 108}}) {
        EXPECT_EQ(clampedToScreen({{c.x, 30}, {c.width, 50}}, screen), (Rect{{c.want, 30}, {c.width, 50}}))
            << c.name;
    }
}

}  // namespace
}  // namespace norvane
