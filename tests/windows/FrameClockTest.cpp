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

class SwitchedLight final : public ScreenLight {
 public:
    bool isLit() override {
        ++questions;
        return isOn;
    }
    bool isKnownDark() override { return isKnown && !isOn; }
    Cancellation onLit(std::function<void()> observer) override { return lit_.add(std::move(observer)); }
    void turnOn() {
        isOn = true;
        lit_.tell();
    }

    bool isOn = true;
    bool isKnown = false;  // without being asked
    int questions = 0;

 private:
    Observers<> lit_;
};

// Pictures in virtual time, each of which takes some of it.
class FrameClockTest : public ::testing::Test {
 protected:
    void paint() {
        const auto at = machine_.time.monotonic();
        times_.push_back(at - start_);
        machine_.time.stepMonotonicClock(cost_);
        frames_.painted(at, rate_);
    }

    ScriptedMachine machine_;
    SwitchedLight light_;
    const MonotonicInstant start_ = machine_.time.monotonic();
    std::vector<std::chrono::nanoseconds> times_;
    std::chrono::nanoseconds cost_{0};
    double rate_ = 50;
    FrameClock frames_{machine_.dispatch.mainQueue(), machine_.time.monotonicClock(), light_,
                       [this] { paint(); }};
};

TEST_F(FrameClockTest, PicturesKeepTheirDistanceWhateverTheyCost) {
    cost_ = 7ms;
    paint();
    machine_.advance(1s - 7ms);
    ASSERT_EQ(times_.size(), 51u);
    EXPECT_EQ(times_.back(), 1s);
    rate_ = 0;
    machine_.advance(1h);
    EXPECT_EQ(times_.size(), 52u) << "the last one said that nothing moves any more";
    cost_ = 0ms;
    const double endless = std::numeric_limits<double>::infinity();
    for (const double rate : {-1.0, 0.0, std::numeric_limits<double>::quiet_NaN(), endless}) {
        times_.clear();
        rate_ = rate;
        paint();
        machine_.advance(1s);
        EXPECT_LE(times_.size(), rate == endless ? 1000u : 1u) << rate;
    }
}

TEST_F(FrameClockTest, ALateLoopPaintsOneLatePictureAndGoesOnFromThere) {
    paint();
    machine_.advance(20ms);
    machine_.time.stepMonotonicClock(25ms);   // late with one
    machine_.advance(15ms);                   // but not with the next
    machine_.time.stepMonotonicClock(131ms);  // several would have been due
    machine_.advance(40ms);
    const std::vector<std::chrono::nanoseconds> wanted{0ms, 20ms, 45ms, 60ms, 191ms, 211ms, 231ms};
    EXPECT_EQ(times_, wanted);
}

TEST_F(FrameClockTest, TheDarkIsWaitedOutWithoutPicturesAndItsEndGetsOneAtOnce) {
    paint();
    light_.isOn = false;
    machine_.advance(20ms);
    EXPECT_FALSE(frames_.mayPaint());
    const int asked = light_.questions;
    machine_.advance(1h);
    EXPECT_EQ(times_.size(), 1u);
    EXPECT_EQ(light_.questions, asked) << "who brings the light back tells of it";
    light_.turnOn();
    EXPECT_EQ(times_.size(), 2u);
    machine_.advance(20ms);
    EXPECT_EQ(times_.size(), 3u);
    EXPECT_TRUE(frames_.mayPaint());

    light_.isOn = false;
    machine_.advance(20ms);
    frames_.stop();
    light_.turnOn();
    machine_.advance(1s);
    EXPECT_EQ(times_.size(), 3u) << "nobody waits any more";

    // What changes without moving has no picture coming that would ask.
    light_.isOn = false;
    EXPECT_TRUE(frames_.mayPaint()) << "nobody knows yet";
    light_.isKnown = true;
    EXPECT_FALSE(frames_.mayPaint());
    EXPECT_FALSE(frames_.mayPaint());
    light_.turnOn();
    EXPECT_EQ(times_.size(), 4u) << "one for all that changed in the dark";
}

TEST(DrawingMemory, IsGivenBackTenSecondsAfterTheLastPopover) {
    ScriptedMachine machine;
    TextLayouts layouts;
    DrawingMemory memory(layouts, machine.dispatch.mainQueue());
    int drops = 0;
    const Cancellation watch = memory.onDrop([&] { ++drops; });
    layouts.layout("kept", {}, 100);
    Cancellation first = memory.popoverShown();
    Cancellation second = memory.popoverShown();
    first.cancel();
    machine.advance(1min);
    second.cancel();
    machine.advance(9s);
    second = memory.popoverShown();  // opened again soon enough
    machine.advance(1min);
    second.cancel();
    machine.advance(9999ms);
    EXPECT_EQ(layouts.count(), 1u);
    EXPECT_EQ(drops, 0);
    machine.advance(1h);
    EXPECT_EQ(layouts.count(), 0u);
    EXPECT_EQ(drops, 1);
}

}  // namespace
}  // namespace norvane
