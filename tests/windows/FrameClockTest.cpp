#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "platform/linux/DrawingMemory.h"
#include "platform/linux/FrameClock.h"
#include "platform/Observers.h"
#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// Pictures in virtual time, each of which takes some of it, on a screen that is lit or not.
class FrameClockTest : public ::testing::Test, protected ScreenLight {
 protected:
    bool isLit() override { return isOn_; }
    bool isKnownDark() override { return isKnown_ && !isOn_; }
    Cancellation onLit(std::function<void()> observer) override { return lit_.add(std::move(observer)); }
    void turnOn() {
        isOn_ = true;
        lit_.tell();
    }
    void paint() {
        const auto at = machine_.time.monotonic();
        times_.push_back(at - start_);
        machine_.time.stepMonotonicClock(cost_);
        frames_.painted(at, rate_);
    }

    ScriptedMachine machine_;
    bool isOn_ = true;
    bool isKnown_ = false;  // without being asked
    Observers<> lit_;
    const MonotonicInstant start_ = machine_.time.monotonic();
    std::vector<std::chrono::nanoseconds> times_;
    std::chrono::nanoseconds cost_{0};
    double rate_ = 50;
    FrameClock frames_{machine_.dispatch.mainQueue(), machine_.time.monotonicClock(), *this,
                       [this] { paint(); }};
};

TEST_F(FrameClockTest, PicturesKeepTheirDistanceWhateverTheyCostAndALateLoopPaintsOneForAll) {
    cost_ = 7ms;
    paint();
    machine_.advance(1s - 7ms);
    ASSERT_EQ(times_.size(), 51u);
    EXPECT_EQ(times_.back(), 1s);
    cost_ = 0ms;
    machine_.time.stepMonotonicClock(18ms);   // late with one
    machine_.advance(15ms);                   // but not with the next
    machine_.time.stepMonotonicClock(131ms);  // several would have been due
    machine_.advance(20ms);
    const std::vector<std::chrono::nanoseconds> wanted{1025ms, 1040ms, 1171ms, 1191ms};
    EXPECT_EQ(std::vector(times_.begin() + 51, times_.end()), wanted);
    const double endless = std::numeric_limits<double>::infinity();
    for (const double rate : {-1.0, 0.0, std::numeric_limits<double>::quiet_NaN(), endless}) {
        rate_ = rate;
        paint();
        times_.clear();
        machine_.advance(1s);
        EXPECT_LE(times_.size(), rate == endless ? 1000u : 0u) << rate;
    }
}

TEST_F(FrameClockTest, TheDarkIsWaitedOutWithoutPicturesAndItsEndGetsOneAtOnce) {
    paint();
    isOn_ = false;
    machine_.advance(1h);
    EXPECT_FALSE(frames_.mayPaint());
    EXPECT_EQ(times_.size(), 1u);
    turnOn();
    EXPECT_EQ(times_.size(), 2u);
    isOn_ = false;
    machine_.advance(20ms);
    frames_.stop();
    turnOn();
    EXPECT_EQ(times_.size(), 2u) << "nobody waits any more";
    // What changes without moving has no picture coming that would ask.
    isOn_ = false;
    EXPECT_TRUE(frames_.mayPaint()) << "nobody knows yet";
    isKnown_ = true;
    EXPECT_FALSE(frames_.mayPaint());
    EXPECT_FALSE(frames_.mayPaint());
    turnOn();
    EXPECT_EQ(times_.size(), 3u) << "one for all that changed in the dark";
}

TEST(DrawingMemory, IsGivenBackTenSecondsAfterTheLastPopover) {
    ScriptedMachine machine;
    TextLayouts layouts;
    DrawingMemory memory(layouts, machine.dispatch.mainQueue());
    layouts.layout("kept", {}, 100);
    memory.popoverShown().cancel();
    machine.advance(9s);
    Cancellation first = memory.popoverShown();  // soon enough
    Cancellation second = memory.popoverShown();
    first.cancel();
    machine.advance(1min);
    second.cancel();
    machine.advance(9999ms);
    EXPECT_EQ(layouts.count(), 1u);
    machine.advance(1ms);
    EXPECT_EQ(layouts.count(), 0u);
}

}  // namespace
}  // namespace norvane
