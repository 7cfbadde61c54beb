#include "telemetry/StateClassifier.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

DiskSnapshot bootVolume(double freeGB, double usedGB = 0, double totalGB = 0) {
    return {.id = {},
            .name = "boot",
            .usedGB = usedGB,
            .totalGB = totalGB,
            .isBootVolume = true,
            .availableForImportantUsage = freeGB};
}

// The boot volume need not be the first, and only the first of two counts.
std::vector<DiskSnapshot> volumesWith(const DiskSnapshot& boot) {
    return {{.id = {}, .name = "other", .usedGB = 1, .totalGB = 1}, boot, bootVolume(0, 1, 1)};
}

// A snapshot that switches no band on.
SystemSnapshot quiet() {
    SystemSnapshot s{};
    s.totalMemoryGB = 1;
    s.memoryPressure = 1;
    s.volumes = volumesWith(bootVolume(500, 0, 1));
    return s;
}

struct BandCase {
    const char* name;
    bool SystemSnapshot::*flag;
    double on, off;
    // Makes the band see exactly this value; sums and differences are made of two unequal parts.
    void (*set)(SystemSnapshot& s, double value);
};

const BandCase kBandCases[] = {
    {"moderate load", &SystemSnapshot::isCPUModerateLoad, 63, 57,
     [](SystemSnapshot& s, double v) { s.cpuSustained = v; }},
    {"GPU saturated", &SystemSnapshot::isGPUSaturated, 80, 65,
     [](SystemSnapshot& s, double v) { s.gpuUsage = v; }},
    {"GPU high", &SystemSnapshot::isGPUHigh, 60, 45, [](SystemSnapshot& s, double v) { s.gpuUsage = v; }},
    {"GPU active", &SystemSnapshot::isGPUActive, 40, 25, [](SystemSnapshot& s, double v) { s.gpuUsage = v; }},
    {"P cores saturated", &SystemSnapshot::isPCoreSaturated, 85, 70,
     [](SystemSnapshot& s, double v) { s.performanceCoreUsage = v; }},
    {"P cores active", &SystemSnapshot::isPCoreActive, 50, 35,
     [](SystemSnapshot& s, double v) { s.performanceCoreUsage = v; }},
    {"idle", &SystemSnapshot::isSystemIdle, 85, 75, [](SystemSnapshot& s, double v) { s.idlePercent = v; }},
    {"optimized", &SystemSnapshot::isAppleSiliconOptimized, 20, 5,
     [](SystemSnapshot& s, double v) {
         s.efficiencyCoreUsage = 2 * v;
         s.performanceCoreUsage = v;
     }},
    {"thrashing", &SystemSnapshot::isMemoryThrashing, 25, 10,
     [](SystemSnapshot& s, double v) {
         s.swapReadMBps = v / 4;
         s.swapWriteMBps = v - v / 4;
     }},
    {"swap", &SystemSnapshot::isMemorySwapHigh, 1.5, 1.0,
     [](SystemSnapshot& s, double v) { s.swapUsedGB = v; }},
    {"compression", &SystemSnapshot::isMemoryHighlyCompressed, 0.25, 0.15,
     [](SystemSnapshot& s, double v) {
         s.totalMemoryGB = 16;
         s.compressedMemoryGB = 16 * v;
     }},
    {"caching", &SystemSnapshot::isMemoryCachingActive, 0.2, 0.1,
     [](SystemSnapshot& s, double v) {
         s.totalMemoryGB = 16;
         s.cachedFilesGB = 16 * v;
     }},
    {"storage critical", &SystemSnapshot::isStorageCritical, 10, 12,
     [](SystemSnapshot& s, double v) { s.volumes = volumesWith(bootVolume(v)); }},
    {"storage low", &SystemSnapshot::isStorageLow, 30, 35,
     [](SystemSnapshot& s, double v) { s.volumes = volumesWith(bootVolume(v)); }},
    {"storage filling", &SystemSnapshot::isStorageFilling, 0.85, 0.8,
     [](SystemSnapshot& s, double v) { s.volumes = volumesWith(bootVolume(500, 512 * v, 512)); }},
    {"heavy I/O", &SystemSnapshot::isStorageHeavyIO, 400, 200,
     [](SystemSnapshot& s, double v) {
         s.diskReadMBps = v / 4;
         s.diskWriteMBps = v - v / 4;
     }},
    {"warm battery", &SystemSnapshot::isBatteryWarm, 35, 32,
     [](SystemSnapshot& s, double v) { s.batteryTemperatureC = v; }},
};

class StateClassifierTest : public testing::Test {
 protected:
    SystemSnapshot classified(SystemSnapshot s) {
        classifier_.classify(s, now_);
        now_ += 1s;
        return s;
    }
    // Of a machine whose impact score is made of these two.
    ImpactState impactOf(double performanceCores, double gpu, ThermalLevel thermal = ThermalLevel::nominal,
                         std::int64_t pressure = 1, double swapMBps = 0) {
        SystemSnapshot s = quiet();
        s.performanceCoreUsage = performanceCores;
        s.gpuUsage = gpu;
        s.thermalLevel = thermal;
        s.memoryPressure = pressure;
        s.swapReadMBps = swapMBps;
        return classified(s).energyImpact;
    }

    StateClassifier classifier_;
    WallInstant now_{std::chrono::seconds(1'000'000)};
};

TEST_F(StateClassifierTest, AFlagChangesExactlyAtItsThresholds) {
    for (const BandCase& c : kBandCases) {
        const bool isFalling = c.on < c.off;
        const double harmless = isFalling ? kInfinity : -kInfinity;
        const double middle = (c.on + c.off) / 2;
        struct Step {
            double value;
            bool want;
        };
        StateClassifier classifier;
        int number = 0;
        for (const Step& step : {Step{middle, false},
                                 {std::nextafter(c.on, harmless), false},
                                 {c.on, true},
                                 {middle, true},
                                 {std::nextafter(c.off, -harmless), true},
                                 {c.off, false},
                                 {std::nextafter(c.off, -harmless), false},
                                 {std::nextafter(c.on, -harmless), true},
                                 {std::nextafter(c.off, harmless), false}}) {
            SystemSnapshot s = quiet();
            c.set(s, step.value);
            classifier.classify(s, now_);
            EXPECT_EQ(s.*c.flag, step.want) << c.name << ", step " << ++number << ", at " << step.value;
        }
    }
}

TEST_F(StateClassifierTest, AQuietMachineAndOneThatTellsNothingHaveNoFlags) {
    SystemSnapshot untold{};
    untold.batteryTemperatureC.reset();
    for (SystemSnapshot& s : std::vector{quiet(), untold}) {
        classifier_.classify(s, now_);
        for (const BandCase& c : kBandCases)
            EXPECT_FALSE(s.*c.flag) << c.name;
    }
}

TEST_F(StateClassifierTest, WithoutTheWholeThereIsNoShareAndWithoutABootVolumeNoLackOfSpace) {
    SystemSnapshot s = quiet();
    s.compressedMemoryGB = s.cachedFilesGB = 1;
    s.volumes = volumesWith(bootVolume(9, 491, 500));
    s = classified(s);
    EXPECT_TRUE(s.isMemoryHighlyCompressed && s.isMemoryCachingActive);
    EXPECT_TRUE(s.isStorageCritical && s.isStorageLow && s.isStorageFilling);
    s.totalMemoryGB = 0;
    s.volumes.erase(s.volumes.begin() + 1, s.volumes.end());
    s = classified(s);
    EXPECT_FALSE(s.isMemoryHighlyCompressed || s.isMemoryCachingActive);
    EXPECT_FALSE(s.isStorageCritical || s.isStorageLow || s.isStorageFilling);
    s.volumes = volumesWith(bootVolume(500, 1, 0));
    EXPECT_FALSE(classified(s).isStorageFilling) << "a volume without a size";
}

TEST_F(StateClassifierTest, RawConditionsReachTheirStatesAndEachOfThemTheSystems) {
    constexpr auto N = ComponentState::normal;
    constexpr auto C = ComponentState::critical;
    struct Case {
        double cpu;
        std::int64_t pressure;
        ThermalLevel thermal;
        SystemStates want;
    };
    for (const Case& c : {Case{85.0, 1, ThermalLevel::nominal, {C, N, C}},
                          {84.99, 1, ThermalLevel::fair, {N, N, N}},
                          {0, 4, ThermalLevel::nominal, {N, C, C}},
                          {0, 3, ThermalLevel::nominal, {N, N, N}},
                          {0, 1, ThermalLevel::serious, {N, N, C}},
                          {0, 1, ThermalLevel::critical, {N, N, C}},
                          {NAN, -1, ThermalLevel::nominal, {N, N, N}}}) {
        StateClassifier classifier;
        SystemStates states;
        for (int second = 0; second < 6; ++second) {
            EXPECT_EQ(states, SystemStates{}) << c.cpu << ' ' << c.pressure << ", second " << second;
            states = classifier.updateStates(c.cpu, c.pressure, c.thermal, now_ + second * 1s);
        }
        EXPECT_EQ(states, c.want) << c.cpu << ' ' << c.pressure;
    }
}

TEST_F(StateClassifierTest, TheSystemGoesByRawConditionsAndNotByTheDebouncedStates) {
    SystemStates states;
    for (int second = 0; second < 12; ++second) {
        const bool isEven = second % 2 == 0;
        states = classifier_.updateStates(isEven ? 100 : 0, isEven ? 1 : 4, ThermalLevel::nominal,
                                          now_ + second * 1s);
    }
    EXPECT_EQ(states,
              (SystemStates{ComponentState::normal, ComponentState::normal, ComponentState::critical}));
}

TEST_F(StateClassifierTest, ImpactIsTheScoresUnlessHeatOrThrashingSayMore) {
    struct Case {
        const char* name;
        double performanceCores, gpu;
        ThermalLevel thermal;
        std::int64_t pressure;
        double swapMBps;
        ImpactState want;
    };
    constexpr auto nominal = ThermalLevel::nominal;
    for (const Case& c : {Case{"score 57", 57, 57, nominal, 1, 0, ImpactState::high},
                          {"score 56", 80, 0, nominal, 1, 0, ImpactState::moderate},
                          {"score 21.7", 31, 0, nominal, 1, 0, ImpactState::low},
                          {"score 30 of the GPU alone", 0, 100, nominal, 1, 0, ImpactState::moderate},
                          {"fair", 0, 0, ThermalLevel::fair, 1, 0, ImpactState::low},
                          {"serious", 0, 0, ThermalLevel::serious, 1, 0, ImpactState::high},
                          {"critical", 0, 0, ThermalLevel::critical, 1, 0, ImpactState::high},
                          {"thrashing under pressure", 0, 0, nominal, 2, 25, ImpactState::high},
                          {"thrashing without pressure", 0, 0, nominal, 1, 25, ImpactState::low},
                          {"pressure without thrashing", 0, 0, nominal, 4, 24, ImpactState::low}}) {
        classifier_ = StateClassifier();
        ImpactState impact = ImpactState::low;
        for (int second = 0; second < 7; ++second)
            impact = impactOf(c.performanceCores, c.gpu, c.thermal, c.pressure, c.swapMBps);
        EXPECT_EQ(impact, c.want) << c.name;
    }
}

TEST_F(StateClassifierTest, TheImpactBandsHoldBetweenTheirThresholds) {
    struct Step {
        double both;
        bool wantModerate, wantHigh;
    };
    for (const Step& step : {Step{16, false, false},
                             {22, true, false},
                             {57, true, true},
                             {51, true, true},
                             {50, true, false},
                             {16, true, false},
                             {15, false, false}}) {
        impactOf(step.both, step.both);
        EXPECT_EQ(classifier_.isActive(Band::impactModerateBand), step.wantModerate) << step.both;
        EXPECT_EQ(classifier_.isActive(Band::impactHighBand), step.wantHigh) << step.both;
    }
}

TEST_F(StateClassifierTest, ImpactGoesByTheThrashingOfTheLastFullTick) {
    for (int tick = 1; tick <= 6; ++tick)
        EXPECT_EQ(impactOf(0, 0, ThermalLevel::nominal, 2, 25), ImpactState::low) << tick;
    // The first of them did not know yet: its candidate is one second younger.
    EXPECT_EQ(impactOf(0, 0, ThermalLevel::nominal, 2, 25), ImpactState::high);
    // And the first calm one still counts as thrashing.
    impactOf(0, 0, ThermalLevel::nominal, 2, 0);
    for (int tick = 2; tick <= 11; ++tick)
        EXPECT_EQ(impactOf(0, 0, ThermalLevel::nominal, 2, 0), ImpactState::high) << tick;
    EXPECT_EQ(impactOf(0, 0, ThermalLevel::nominal, 2, 0), ImpactState::low);
}

TEST_F(StateClassifierTest, HeatAndThrashingLeaveTheImpactBandsAsTheyStand) {
    const auto expectBands = [&](bool want, const char* when) {
        EXPECT_EQ(classifier_.isActive(Band::impactHighBand), want) << when;
    };
    impactOf(0, 0, ThermalLevel::nominal, 1, 30);
    impactOf(100, 100, ThermalLevel::serious);
    expectBands(false, "a load in the heat");
    impactOf(0, 0, ThermalLevel::nominal, 1, 30);
    impactOf(100, 100, ThermalLevel::nominal, 2, 30);
    expectBands(false, "a load while thrashing");
    impactOf(100, 100, ThermalLevel::nominal, 1, 30);
    expectBands(true, "a load");
    impactOf(0, 0, ThermalLevel::critical, 1, 30);
    expectBands(true, "calm in the heat");
    impactOf(0, 0, ThermalLevel::nominal, 4, 0);
    expectBands(true, "calm, thrashing until now");
    impactOf(0, 0, ThermalLevel::nominal, 4, 0);
    expectBands(false, "calm");
}

}  // namespace
}  // namespace norvane
