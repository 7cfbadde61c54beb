#include "platform/linux/BatteryTimes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/linux/BatteryFigures.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Minutes = BatteryTimes::Minutes;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

// A battery of 50 Wh, half full, that gives 10 W.
Battery battery(const char* status = "Discharging") {
    Battery battery;
    battery.name = "BAT0";
    battery.status = status;
    battery.energy = {50'000'000, 60'000'000, 25'000'000};
    battery.powerNow = 10'000'000;
    return battery;
}

class BatteryTimesTest : public testing::Test {
 protected:
    BatteryTimes times;
    MonotonicInstant now{1h};

    Minutes after(std::chrono::nanoseconds time, const std::vector<Battery>& batteries,
                  std::optional<bool> isExternal = false) {
        now += time;
        return times.update(batteries, isExternal, now);
    }
    // What is said of such a battery once its rate has settled.
    static Minutes settled(const std::vector<Battery>& batteries, std::optional<bool> isExternal = false) {
        BatteryTimes fresh;
        fresh.update(batteries, isExternal, MonotonicInstant(1h));
        return fresh.update(batteries, isExternal, MonotonicInstant(1h + 1min));
    }
};

TEST_F(BatteryTimesTest, AnswerTheQuestionThatTheStatusFits) {
    EXPECT_EQ(settled({battery("Discharging")}), (Minutes{150, -1}));
    EXPECT_EQ(settled({battery("Charging")}, true), (Minutes{-1, 150}));
    for (const char* status : {"Full", "Not charging", "Unknown", "", "charging"})
        EXPECT_EQ(settled({battery(status)}), Minutes{}) << status;
}

TEST_F(BatteryTimesTest, WorkFromWhateverUnitsTheDriverHas) {
    struct Case {
        const char* name;
        void (*change)(Battery&);
        Minutes want;
    };
    for (const Case& c : {
             Case{"power below 0", [](Battery& it) { it.powerNow = -10'000'000; }, {150, -1}},
             Case{"current below 0",
                  [](Battery& it) {
                      it.powerNow.reset();
                      it.currentNow = -1'000'000;
                      it.voltageNow = 10'000'000;
                  },
                  {150, -1}},
             Case{"current without a voltage",
                  [](Battery& it) {
                      it.powerNow.reset();
                      it.currentNow = 1'000'000;
                      it.voltageMinDesign = 10'000'000;
                  },
                  {}},
             Case{"neither", [](Battery& it) { it.powerNow.reset(); }, {}},
             Case{"charges",
                  [](Battery& it) {
                      it.energy = {};
                      it.charge = {5'000'000, {}, 2'500'000};
                      it.voltageMinDesign = 10'000'000;
                  },
                  {150, -1}},
             Case{"charges at the voltage of the moment",
                  [](Battery& it) {
                      it.energy = {};
                      it.charge = {5'000'000, {}, 2'500'000};
                      it.voltageMinDesign = 0;
                      it.voltageNow = 12'000'000;
                  },
                  {180, -1}},
             Case{"charges without a voltage",
                  [](Battery& it) {
                      it.energy = {};
                      it.charge = {5'000'000, {}, 2'500'000};
                  },
                  {}},
             Case{"a percentage in place of what is left",
                  [](Battery& it) {
                      it.energy.now.reset();
                      it.capacity = 20;
                  },
                  {60, -1}},
             Case{"a 0 that the percentage belies",
                  [](Battery& it) {
                      it.energy.now = 0;
                      it.capacity = 20;
                  },
                  {60, -1}},
             Case{"empty",
                  [](Battery& it) {
                      it.energy.now = 0;
                      it.capacity = 0;
                  },
                  {0, -1}},
             Case{"nothing left that is known", [](Battery& it) { it.energy.now = -1; }, {}},
             Case{"a percentage alone",
                  [](Battery& it) {
                      it.energy = {};
                      it.capacity = 50;
                  },
                  {}},
             Case{"just 0.1 W",
                  [](Battery& it) {
                      it.powerNow = 100'000;
                      it.energy.now = 100'000;
                  },
                  {60, -1}},
             Case{"less than 0.1 W",
                  [](Battery& it) {
                      it.powerNow = 99'999;
                      it.energy.now = 100'000;
                  },
                  {}},
             Case{"just 24 hours", [](Battery& it) { it.energy.now = 240'000'000; }, {1440, -1}},
             Case{"more than 24 hours", [](Battery& it) { it.energy.now = 240'000'001; }, {}},
             Case{"whole minutes, cut", [](Battery& it) { it.energy.now = 25'166'000; }, {150, -1}},
             Case{"the largest numbers",
                  [](Battery& it) {
                      it.energy.now = kMost;
                      it.powerNow = std::numeric_limits<std::int64_t>::min();
                  },
                  {60, -1}},
         }) {
        Battery changed = battery();
        c.change(changed);
        EXPECT_EQ(settled({changed}), c.want) << c.name;
    }
}

TEST_F(BatteryTimesTest, ChargeUpToTheLimitThatTheOwnerSet) {
    struct Case {
        const char* name;
        Battery::Number limit;
        std::int64_t now;
        std::int64_t want;
    };
    for (const Case& c :
         {Case{"80 %", 80, 25'000'000, 90}, Case{"99 %", 99, 25'000'000, 147},
          Case{"100 %", 100, 25'000'000, 150}, Case{"0, not set", 0, 25'000'000, 150},
          Case{"nonsense", 200, 25'000'000, 150}, Case{"none", {}, 25'000'000, 150},
          Case{"above the limit", 40, 25'000'000, 0}, Case{"above full", {}, 51'000'000, 0}}) {
        Battery charging = battery("Charging");
        charging.chargeControlEndThreshold = c.limit;
        charging.energy.now = c.now;
        EXPECT_EQ(settled({charging}, true).toFull, c.want) << c.name;
    }
    Battery slow = battery("Charging");
    slow.powerNow = 1'250'000;
    EXPECT_EQ(settled({slow}, true).toFull, 1200) << "just 20 hours";
    slow.powerNow = 1'249'999;
    EXPECT_EQ(settled({slow}, true).toFull, -1);
    slow.energy.full.reset();
    slow.powerNow = 10'000'000;
    EXPECT_EQ(settled({slow}, true).toFull, -1) << "nobody knows what full is";
}

TEST_F(BatteryTimesTest, SeveralBatteriesShareTheLoad) {
    Battery first = battery();
    Battery idle = battery("Unknown");
    idle.name = "BAT1";
    idle.powerNow = 0;
    EXPECT_EQ(settled({first, idle}).toEmpty, 300);
    idle.powerNow.reset();
    EXPECT_EQ(settled({first, idle}).toEmpty, 300) << "the rate of one is known";
    idle.energy = {50'000'000, {}, {}};
    EXPECT_EQ(settled({first, idle}).toEmpty, -1) << "what is left of the other is not";
    EXPECT_EQ(settled({first, battery("Charging")}), Minutes{}) << "one feeds the other";

    Battery held = battery("Not charging");
    held.chargeControlEndThreshold = 40;
    held.powerNow = 0;
    EXPECT_EQ(settled({battery("Charging"), held}, true).toFull, 150) << "it is above its limit";
}

TEST_F(BatteryTimesTest, NeedTwoSamplesAndTenSeconds) {
    EXPECT_EQ(after(0s, {battery()}).toEmpty, -1);
    EXPECT_EQ(after(9s, {battery()}).toEmpty, -1) << "two samples, too soon";
    EXPECT_EQ(after(1s, {battery()}).toEmpty, 150);
    BatteryTimes fresh;
    EXPECT_EQ(fresh.update({battery()}, false, now), Minutes{});
    EXPECT_EQ(fresh.update({battery()}, false, now + 1min).toEmpty, 150) << "two are enough";
}

TEST_F(BatteryTimesTest, TheRateFollowsSlowly) {
    Battery busy = battery();
    busy.powerNow = 30'000'000;
    after(0s, {battery()});
    const double power = 10 + (1 - std::exp(-1.0)) * 20;
    EXPECT_EQ(after(60s, {busy}).toEmpty, static_cast<std::int64_t>(25 / power * 60));
    // The weight depends on the time that has passed, not on how often one looks.
    BatteryTimes often;
    MonotonicInstant at = now;
    often.update({battery()}, false, at);
    Minutes last;
    for (int i = 0; i < 20; ++i)
        last = often.update({busy}, false, at += 3s);
    EXPECT_EQ(last.toEmpty, static_cast<std::int64_t>(25 / power * 60));
    EXPECT_EQ(often.update({battery()}, false, at), last) << "no time, no weight";
}

TEST_F(BatteryTimesTest, AnotherSituationStartsTheRateAnew) {
    Battery other = battery();
    other.name = "BAT1";
    struct Case {
        const char* name;
        std::vector<Battery> batteries;
        std::optional<bool> isExternal;
    };
    for (const Case& c :
         {Case{"another status", {battery("Not charging")}, false},
          Case{"the adapter is in", {battery()}, true}, Case{"nothing tells of an adapter", {battery()}, {}},
          Case{"a second battery", {battery(), other}, false}, Case{"another battery", {other}, false}}) {
        times.forget();
        after(1min, {battery()});
        ASSERT_EQ(after(10s, {battery()}).toEmpty, 150) << c.name;
        after(3s, c.batteries, c.isExternal);
        EXPECT_EQ(after(3s, {battery()}).toEmpty, -1) << c.name;
        EXPECT_EQ(after(9s, {battery()}).toEmpty, -1) << c.name;
        EXPECT_EQ(after(1s, {battery()}).toEmpty, 150) << c.name;
    }
    times.forget();
    EXPECT_EQ(after(1min, {battery()}).toEmpty, -1);
}

TEST_F(BatteryTimesTest, AMissingRateIsMissedOnlyOnce) {
    Battery silent = battery();
    silent.powerNow.reset();
    after(0s, {battery()});
    after(10s, {battery()});
    EXPECT_EQ(after(3s, {silent}).toEmpty, -1);
    EXPECT_EQ(after(3s, {battery()}).toEmpty, 150);
}

TEST(BatteryCharge, HeldAtItsLimitCountsAsCharged) {
    struct Case {
        const char* name;
        const char* status;
        Battery::Number capacity;
        Battery::Number limit;
        std::optional<bool> isExternal;
        bool want;
    };
    for (const Case& c : {
             Case{"full", "Full", 100, {}, true, true},
             Case{"full, whatever else", "Full", 60, {}, false, true},
             Case{"held", "Not charging", 80, 80, true, true},
             Case{"held a little below", "Not charging", 79, 80, true, true},
             Case{"not yet there", "Not charging", 78, 80, true, false},
             Case{"no limit known", "Not charging", 100, {}, true, false},
             Case{"a limit of 0", "Not charging", 50, 0, true, false},
             Case{"a limit of 100", "Not charging", 99, 100, true, true},
             Case{"a limit below 0", "Not charging", 50, -1, true, false},
             Case{"no external power", "Not charging", 80, 80, false, false},
             Case{"perhaps no external power", "Not charging", 80, 80, {}, false},
             Case{"no percentage, half full", "Not charging", {}, 51, true, true},
             Case{"charging", "Charging", 80, 80, true, false},
             Case{"discharging on purpose", "Discharging", 80, 80, true, false},
         }) {
        Battery it = battery(c.status);
        it.capacity = c.capacity;
        it.chargeControlEndThreshold = c.limit;
        EXPECT_EQ(isCharged({it}, c.isExternal), c.want) << c.name;
    }
    EXPECT_FALSE(isCharged({battery("Full"), battery("Charging")}, true));
    EXPECT_TRUE(isCharged({battery("Full"), battery("Full")}, true));
}

}  // namespace
}  // namespace norvane
