#include "platform/linux/BatteryTimes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/linux/BatteryFigures.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Minutes = BatteryTimes::Minutes;
using Limits = std::numeric_limits<std::int64_t>;

// A battery of 50 Wh, half full, that gives 10 W.
Battery battery(const char* status = "Discharging") {
    Battery battery;
    battery.name = "BAT0";
    battery.status = status;
    battery.energy = {50'000'000, 60'000'000, 25'000'000};
    battery.powerNow = 10'000'000;
    return battery;
}

// What is said of such batteries once their rate has settled.
Minutes settled(const std::vector<Battery>& batteries, std::optional<bool> isExternal = false) {
    BatteryTimes fresh;
    fresh.update(batteries, isExternal, MonotonicInstant(1h));
    return fresh.update(batteries, isExternal, MonotonicInstant(1h + 1min));
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
};

TEST(SettledBatteryTimes, AnswerTheQuestionThatTheStatusFits) {
    EXPECT_EQ(settled({battery("Discharging")}), (Minutes{150, -1}));
    EXPECT_EQ(settled({battery("Charging")}, true), (Minutes{-1, 150}));
    for (const char* status : {"Full", "Not charging", "", "charging"})
        EXPECT_EQ(settled({battery(status)}), Minutes{}) << status;
}

TEST(SettledBatteryTimes, WorkFromWhateverUnitsTheDriverHas) {
    const auto expectRate = [](const char* name, std::int64_t toEmpty, Battery::Number power,
                               Battery::Number current, Battery::Number voltage) {
        Battery changed = battery();
        changed.powerNow = power;
        changed.currentNow = current;
        changed.voltageNow = voltage;
        changed.voltageMinDesign = 10'000'000;
        EXPECT_EQ(settled({changed}), (Minutes{toEmpty, -1})) << name;
    };
    expectRate("power below 0", 150, -10'000'000, {}, {});
    expectRate("current below 0", 150, {}, -1'000'000, 10'000'000);
    expectRate("current without a voltage", -1, {}, 1'000'000, {});
    expectRate("neither", -1, {}, {}, {});

    const auto expectCharge = [](const char* name, std::int64_t toEmpty, Battery::Number design,
                                 Battery::Number voltage) {
        Battery changed = battery();
        changed.energy = {};
        changed.charge = {5'000'000, {}, 2'500'000};
        changed.voltageMinDesign = design;
        changed.voltageNow = voltage;
        EXPECT_EQ(settled({changed}), (Minutes{toEmpty, -1})) << name;
    };
    expectCharge("charges", 150, 10'000'000, {});
    expectCharge("charges at the voltage of the moment", 180, 0, 12'000'000);
    expectCharge("charges without a voltage", -1, {}, {});

    const auto expectLeft = [](const char* name, std::int64_t toEmpty, Battery::Number left,
                               Battery::Number percent, std::int64_t power = 10'000'000) {
        Battery changed = battery();
        changed.energy.now = left;
        changed.capacity = percent;
        changed.powerNow = power;
        EXPECT_EQ(settled({changed}), (Minutes{toEmpty, -1})) << name;
    };
    expectLeft("a percentage in place of what is left", 60, {}, 20);
    expectLeft("a 0 that the percentage belies", 60, 0, 20);
    expectLeft("empty", 0, 0, 0);
    expectLeft("nothing left that is known", -1, -1, {});
    expectLeft("just 0.1 W", 60, 100'000, {}, 100'000);
    expectLeft("less than 0.1 W", -1, 100'000, {}, 99'999);
    expectLeft("just 24 hours", 1440, 240'000'000, {});
    expectLeft("more than 24 hours", -1, 240'000'001, {});
    expectLeft("whole minutes, cut", 150, 25'166'000, {});
    expectLeft("the largest numbers", 60, Limits::max(), {}, Limits::min());
    Battery bare = battery();
    bare.energy = {};
    bare.capacity = 50;
    EXPECT_EQ(settled({bare}), Minutes{}) << "a percentage alone";
}

TEST(SettledBatteryTimes, ChargeUpToTheLimitThatTheOwnerSet) {
    const auto toFull = [](Battery::Number limit, Battery::Number left, Battery::Number full = 50'000'000,
                           std::int64_t power = 10'000'000) {
        Battery charging = battery("Charging");
        charging.chargeControlEndThreshold = limit;
        charging.energy = {full, 60'000'000, left};
        charging.powerNow = power;
        return settled({charging}, true).toFull;
    };
    EXPECT_EQ(toFull(80, 25'000'000), 90);
    EXPECT_EQ(toFull(99, 25'000'000), 147);
    EXPECT_EQ(toFull(100, 25'000'000), 150);
    EXPECT_EQ(toFull(0, 25'000'000), 150) << "not set";
    EXPECT_EQ(toFull(200, 25'000'000), 150) << "nonsense";
    EXPECT_EQ(toFull(40, 25'000'000), 0) << "above the limit";
    EXPECT_EQ(toFull({}, 51'000'000), 0) << "above full";
    EXPECT_EQ(toFull({}, 25'000'000, 50'000'000, 1'250'000), 1200) << "just 20 hours";
    EXPECT_EQ(toFull({}, 25'000'000, 50'000'000, 1'249'999), -1);
    EXPECT_EQ(toFull({}, 25'000'000, {}), -1) << "nobody knows what full is";
}

TEST(SettledBatteryTimes, AreSharedBySeveralBatteries) {
    Battery idle = battery("Unknown");
    idle.name = "BAT1";
    idle.powerNow = 0;
    EXPECT_EQ(settled({battery(), idle}).toEmpty, 300);
    idle.powerNow.reset();
    EXPECT_EQ(settled({battery(), idle}).toEmpty, 300) << "the rate of one is known";
    idle.energy = {50'000'000, {}, {}};
    EXPECT_EQ(settled({battery(), idle}).toEmpty, -1) << "what is left of the other is not";
    EXPECT_EQ(settled({battery(), battery("Charging")}), Minutes{}) << "one feeds the other";

    Battery held = battery("Not charging");
    held.chargeControlEndThreshold = 40;
    held.powerNow = 0;
    EXPECT_EQ(settled({battery("Charging"), held}, true).toFull, 150) << "it is above its limit";
}

TEST_F(BatteryTimesTest, NeedTwoSamplesAndTenSeconds) {
    EXPECT_EQ(after(0s, {battery()}).toEmpty, -1);
    EXPECT_EQ(after(9s, {battery()}).toEmpty, -1) << "two samples, too soon";
    EXPECT_EQ(after(1s, {battery()}).toEmpty, 150);
    Battery silent = battery();
    silent.powerNow.reset();
    EXPECT_EQ(after(3s, {silent}).toEmpty, -1);
    EXPECT_EQ(after(3s, {battery()}).toEmpty, 150) << "a missing rate is missed only once";
    times.forget();
    EXPECT_EQ(after(1min, {battery()}).toEmpty, -1);
}

TEST_F(BatteryTimesTest, TheRateFollowsSlowly) {
    Battery busy = battery();
    busy.powerNow = 30'000'000;
    after(0s, {battery()});
    const double power = 10 + (1 - std::exp(-1.0)) * 20;
    EXPECT_EQ(after(60s, {busy}).toEmpty, static_cast<std::int64_t>(25 / power * 60));
    // The weight depends on the time that has passed, not on how often one looks.
    times.forget();
    Minutes last = after(0s, {battery()});
    for (int i = 0; i < 20; ++i)
        last = after(3s, {busy});
    EXPECT_EQ(last.toEmpty, static_cast<std::int64_t>(25 / power * 60));
    EXPECT_EQ(after(0s, {battery()}), last) << "no time, no weight";
}

TEST_F(BatteryTimesTest, AnotherSituationStartsTheRateAnew) {
    Battery other = battery();
    other.name = "BAT1";
    const auto expectAnew = [this](const char* name, const std::vector<Battery>& batteries,
                                   std::optional<bool> isExternal) {
        times.forget();
        after(1min, {battery()});
        ASSERT_EQ(after(10s, {battery()}).toEmpty, 150) << name;
        after(3s, batteries, isExternal);
        EXPECT_EQ(after(3s, {battery()}).toEmpty, -1) << name;
        EXPECT_EQ(after(9s, {battery()}).toEmpty, -1) << name;
        EXPECT_EQ(after(1s, {battery()}).toEmpty, 150) << name;
    };
    expectAnew("another status", {battery("Not charging")}, false);
    expectAnew("the adapter is in", {battery()}, true);
    expectAnew("nothing tells of an adapter", {battery()}, {});
    expectAnew("a second battery", {battery(), other}, false);
    expectAnew("another battery", {other}, false);
}

TEST(BatteryCharge, HeldAtItsLimitCountsAsCharged) {
    const auto charged = [](const char* status, Battery::Number capacity, Battery::Number limit,
                            std::optional<bool> isExternal = true) {
        Battery it = battery(status);
        it.capacity = capacity;
        it.chargeControlEndThreshold = limit;
        return isCharged({it}, isExternal);
    };
    EXPECT_TRUE(charged("Full", 60, {}, false));
    EXPECT_TRUE(charged("Not charging", 79, 80)) << "held a little below";
    EXPECT_FALSE(charged("Not charging", 78, 80)) << "not yet there";
    EXPECT_FALSE(charged("Not charging", 100, {})) << "no limit known";
    EXPECT_FALSE(charged("Not charging", 50, 0));
    EXPECT_FALSE(charged("Not charging", 50, -1));
    EXPECT_TRUE(charged("Not charging", 99, 100));
    EXPECT_FALSE(charged("Not charging", 80, 80, false)) << "no external power";
    EXPECT_FALSE(charged("Not charging", 80, 80, {})) << "perhaps no external power";
    EXPECT_TRUE(charged("Not charging", {}, 51)) << "no percentage, half full";
    EXPECT_FALSE(charged("Charging", 80, 80));
    EXPECT_FALSE(charged("Discharging", 80, 80)) << "on purpose";
    EXPECT_FALSE(isCharged({battery("Full"), battery("Charging")}, true));
    EXPECT_TRUE(isCharged({battery("Full"), battery("Full")}, true));
}

}  // namespace
}  // namespace norvane
