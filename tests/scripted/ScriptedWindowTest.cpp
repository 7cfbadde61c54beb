#include <gtest/gtest.h>

#include <memory>

#include "platform/scripted/ScriptedMachine.h"
#include "platform/scripted/ScriptedPopoverWindow.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// A content of any size and rate that counts what it is asked.
class CountedContent final : public SurfaceContent {
 public:
    void appear() override {}
    void disappear() override {}
    Size fittingSize(Size most) override {
        most_ = most;
        return {std::min(size.width, most.width), std::min(size.height, most.height)};
    }
    DisplayList displayList(Size at, MonotonicInstant) override {
        ++pictures;
        return {at, {}};
    }
    double frameRate() const override { return rate; }
    AccessibleNode accessibleTree() override { return {}; }
    void pointer(const PointerEvent& event) override {
        if (event.kind == PointerEvent::Kind::press) pressedAt = event.at;
    }
    bool key(const KeyEvent&) override { return false; }
    bool perform(std::string_view, std::string_view) override { return false; }
    bool focus(std::string_view) override { return false; }
    void change() { tellChanged(); }
    Size most() const { return most_; }

    Size size{200, 100};
    double rate = 0;
    int pictures = 0;
    std::optional<Point> pressedAt;

 private:
    Size most_;
};

class ScriptedWindowTest : public testing::Test, private PopoverWindowObserver {
 protected:
    void show(const Rect& anchor) {
        window_->place(anchor);
        window_->orderFront();
    }
    void windowPressedOutside() override {}
    void windowLostFocus() override {}
    void windowEscapePressed() override {}

    static constexpr Rect kTop{{700, 0}, {54, 22}};
    static constexpr Rect kBottom{{700, 970}, {54, 22}};

    ScriptedMachine machine_;
    CountedContent content_;
    std::unique_ptr<PopoverWindow> window_ = machine_.windowServer.makePopoverWindow(content_, *this);
};

TEST_F(ScriptedWindowTest, HangsFromTheAnchorsNearEdgeAndKeepsItThereWhileItGrows) {
    show(kTop);
    EXPECT_EQ(window_->frame(), (Rect{{627, 28}, {200, 100}}));
    EXPECT_EQ(content_.most(), (Size{1600, 1000 - 22 - 6 - 8}));
    content_.size.height = 300;
    content_.change();
    machine_.settle();
    EXPECT_EQ(window_->frame(), (Rect{{627, 28}, {200, 300}}));
    content_.size.height = 5000;
    content_.change();
    machine_.settle();
    EXPECT_EQ(window_->frame().size.height, 964) << "no further than the screen";
    window_->setFrame({{500, 1}, {1, 1}});
    EXPECT_EQ(window_->frame(), (Rect{{500, 28}, {200, 964}})) << "to and fro alone";
    machine_.windowServer.click({510, 40});
    EXPECT_EQ(content_.pressedAt, (Point{10, 12}));

    window_->orderOut();
    content_.size.height = 100;
    show(kBottom);
    EXPECT_EQ(window_->frame(), (Rect{{627, 970 - 6 - 100}, {200, 100}}));
    EXPECT_EQ(content_.most().height, 970 - 22 - 6 - 8);
    content_.size.height = 300;
    content_.change();
    machine_.settle();
    EXPECT_EQ(window_->frame(), (Rect{{627, 970 - 6 - 300}, {200, 300}})) << "its lower edge stays";
}

TEST_F(ScriptedWindowTest, PaintsOnceForManyChangesAndFramesOnlyWhereTheyRun) {
    show(kTop);
    EXPECT_EQ(content_.pictures, 1) << "it comes up painted";
    for (int i = 0; i < 5; ++i)
        content_.change();
    machine_.settle();
    EXPECT_EQ(content_.pictures, 2);
    content_.rate = 60;
    content_.change();
    machine_.advance(10s);
    EXPECT_EQ(content_.pictures, 3) << "its frames do not run";
    machine_.windowServer.runsFrames = true;
    content_.change();
    machine_.advance(995ms);
    EXPECT_EQ(content_.pictures, 4 + 59);
    content_.rate = 0;
    machine_.advance(1s);
    const int last = content_.pictures;
    EXPECT_EQ(last, 4 + 60);
    machine_.advance(1h);
    EXPECT_EQ(content_.pictures, last) << "it stands still";
    content_.rate = 30;
    content_.change();
    machine_.advance(100ms);
    window_->orderOut();
    const int closed = content_.pictures;
    machine_.advance(1h);
    content_.change();
    machine_.settle();
    EXPECT_EQ(content_.pictures, closed) << "nobody looks";
}

}  // namespace
}  // namespace norvane
