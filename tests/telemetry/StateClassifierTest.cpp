#include "telemetry/StateClassifier.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace norvane {
namespace {

using namespace std::chrono_literals;
using S = SystemSnapshot;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr WallInstant kStart{std::chrono::seconds(1'000'000)};

// The boot volume need not be the first, and only the first of two counts.
void setBootVolume(S& s, double freeGB, double usedGB = 0, double totalGB = 1) {
    const auto volume = [](bool isBootVolume, double free, double used, double total) {
        return DiskSnapshot{{}, {}, used, total, false, isBootVolume, free};
    };
    s.volumes = {volume(false, 0, 1, 1), volume(true, freeGB, usedGB, totalGB), volume(true, 0, 1, 1)};
}

// A snapshot that switches no band on.
S quiet() {
    S s{};
    s.totalMemoryGB = 16;
    s.memoryPressure = 1;
    setBootVolume(s, 500);
    return s;
}

struct BandCase {
    const char* name;
    bool S::*flag;
    double on, off;
    // Makes the band see exactly this value.
    void (*set)(S& s, double value);
};

// Two unequal numbers that, the second taken with this sign, are exactly this value together.
void setParts(double& a, double sign, double& b, double value) {
    a = 2 * value;
    b = -sign * value;
}

const BandCase kBandCases[] = {
    {"moderate load", &S::isCPUModerateLoad, 63, 57, [](S& s, double v) { s.cpuSustained = v; }},
    {"GPU saturated", &S::isGPUSaturated, 80, 65, [](S& s, double v) { s.gpuUsage = v; }},
    {"GPU high", &S::isGPUHigh, 60, 45, [](S& s, double v) { s.gpuUsage = v; }},
    {"GPU active", &S::isGPUActive, 40, 25, [](S& s, double v) { s.gpuUsage = v; }},
    {"P cores saturated", &S::isPCoreSaturated, 85, 70, [](S& s, double v) { s.performanceCoreUsage = v; }},
    {"P cores active", &S::isPCoreActive, 50, 35, [](S& s, double v) { s.performanceCoreUsage = v; }},
    {"idle", &S::isSystemIdle, 85, 75, [](S& s, double v) { s.idlePercent = v; }},
    {"optimized", &S::isAppleSiliconOptimized, 20, 5,
     [](S& s, double v) { setParts(s.efficiencyCoreUsage, -1, s.performanceCoreUsage, v); }},
    {"thrashing", &S::isMemoryThrashing, 25, 10,
     [](S& s, double v) { setParts(s.swapReadMBps, 1, s.swapWriteMBps, v); }},
    {"swap", &S::isMemorySwapHigh, 1.5, 1.0, [](S& s, double v) { s.swapUsedGB = v; }},
    {"compression", &S::isMemoryHighlyCompressed, 0.25, 0.15,
     [](S& s, double v) { s.compressedMemoryGB = 16 * v; }},
    {"caching", &S::isMemoryCachingActive, 0.2, 0.1, [](S& s, double v) { s.cachedFilesGB = 16 * v; }},
    {"storage critical", &S::isStorageCritical, 10, 12, [](S& s, double v) { setBootVolume(s, v); }},
    {"storage low", &S::isStorageLow, 30, 35, [](S& s, double v) { setBootVolume(s, v); }},
    {"storage filling", &S::isStorageFilling, 0.85, 0.8,
     [](S& s, double v) { setBootVolume(s, 500, 512 * v, 512); }},
    {"heavy I/O", &S::isStorageHeavyIO, 400, 200,
     [](S& s, double v) { setParts(s.diskReadMBps, 1, s.diskWriteMBps, v); }},
    {"warm battery", &S::isBatteryWarm, 35, 32, [](S& s, double v) { s.batteryTemperatureC = v; }},
};

TEST(StateClassifier, AFlagChangesExactlyAtItsThresholdsAndNotForWhatIsNoNumber) {
    for (const BandCase& c : kBandCases) {
        const double harmless = c.on < c.off ? kInfinity : -kInfinity;
        StateClassifier classifier;
        for (const auto& [value, want] : {std::pair{(c.on + c.off) / 2, false},
                                          {std::nextafter(c.on, harmless), false},
                                          {c.on, true},
                                          {NAN, true},
                                          {std::nextafter(c.off, -harmless), true},
                                          {c.off, false},
                                          {std::nextafter(c.off, -harmless), false}}) {
            S s = quiet();
            c.set(s, value);
            classifier.classify(s, kStart);
            EXPECT_EQ(s.*c.flag, want) << c.name << " at " << value;
        }
    }
}

TEST(StateClassifier, WithoutTheWholeThereIsNoShareAndWithoutABootVolumeNoLackOfSpace) {
    for (const bool isKnown : {true, false}) {
        S s = quiet();
        s.compressedMemoryGB = s.cachedFilesGB = 16;
        setBootVolume(s, 9, 491, 500);
        if (!isKnown) s.totalMemoryGB = 0;
        if (!isKnown) s.volumes.erase(s.volumes.begin() + 1, s.volumes.end());
        StateClassifier().classify(s, kStart);
        for (const bool flag : {s.isMemoryHighlyCompressed, s.isMemoryCachingActive, s.isStorageCritical,
                                s.isStorageLow, s.isStorageFilling})
            EXPECT_EQ(flag, isKnown);
    }
}

// Soak and stories see a change of one step.
TEST(StateDebouncer, TimesEachCandidateAloneWhateverTheStep) {
    constexpr auto L = ImpactState::low;
    constexpr auto M = ImpactState::moderate;
    constexpr auto H = ImpactState::high;
    struct Seen {
        std::chrono::seconds at;
        ImpactState state, want;
    };
    for (const auto& sequence : std::vector<std::vector<Seen>>{
             {{0s, H, L}, {4s, H, L}, {5s, H, H}, {6s, L, H}, {15s, L, H}, {16s, L, L}},
             {{0s, M, L}, {4s, H, L}, {8s, H, L}, {9s, H, H}},            // another candidate restarts
             {{100s, M, L}, {50s, M, L}, {104s, M, L}, {105s, M, M}}}) {  // the clock steps back
        StateDebouncer<ImpactState> debouncer;
        for (const Seen& seen : sequence)
            EXPECT_EQ(debouncer.update(seen.state, WallInstant(seen.at)), seen.want) << seen.at.count();
    }
}

class ImpactTest : public testing::Test {
 protected:
    // Of a machine with this load, one second after the last.
    ImpactState impactOf(double performanceCores, double gpu, ThermalLevel thermal = ThermalLevel::nominal,
                         std::int64_t pressure = 1, double swapMBps = 0) {
        S s = quiet();
        s.performanceCoreUsage = performanceCores;
        s.gpuUsage = gpu;
        s.thermalLevel = thermal;
        s.memoryPressure = pressure;
        s.swapReadMBps = swapMBps;
        classifier_.classify(s, now_);
        now_ += 1s;
        return s.energyImpact;
    }

    StateClassifier classifier_;
    WallInstant now_ = kStart;
};

TEST_F(ImpactTest, ItsBandsHoldBetweenTheirThresholdsAndStandStillInHeatAndThrashing) {
    constexpr auto nominal = ThermalLevel::nominal;
    struct Step {
        double performanceCores, gpu;
        ThermalLevel thermal;
        std::int64_t pressure;
        double swapMBps;
        bool wantModerate, wantHigh;
    };
    for (const Step& s :
         {Step{31, 0, nominal, 1, 0, false, false}, Step{0, 74, nominal, 1, 0, true, false},
          Step{80, 0, nominal, 1, 0, true, false}, Step{57, 57, nominal, 1, 0, true, true},
          Step{51, 51, nominal, 1, 0, true, true}, Step{50, 50, nominal, 1, 0, true, false},
          Step{16, 16, nominal, 1, 0, true, false}, Step{15, 15, nominal, 1, 30, false, false},
          Step{100, 100, ThermalLevel::serious, 1, 30, false, false},
          Step{100, 100, nominal, 2, 30, false, false}, Step{100, 100, nominal, 1, 30, true, true},
          Step{0, 0, ThermalLevel::critical, 1, 30, true, true},
          Step{0, 0, nominal, 4, 0, true, true},  // thrashing until now
          Step{0, 0, nominal, 4, 0, false, false}}) {
        impactOf(s.performanceCores, s.gpu, s.thermal, s.pressure, s.swapMBps);
        EXPECT_EQ(classifier_.isActive(Band::impactModerateBand), s.wantModerate) << (now_ - kStart) / 1s;
        EXPECT_EQ(classifier_.isActive(Band::impactHighBand), s.wantHigh) << (now_ - kStart) / 1s;
    }
}

TEST_F(ImpactTest, GoesByTheThrashingOfTheLastFullTickIfThereIsPressure) {
    constexpr auto nominal = ThermalLevel::nominal;
    for (int tick = 1; tick <= 7; ++tick)
        EXPECT_EQ(impactOf(0, 0, nominal, 1, 25), ImpactState::low) << tick;
    impactOf(0, 0, nominal, 4, 0);
    for (int tick = 1; tick <= 7; ++tick)
        EXPECT_EQ(impactOf(0, 0, nominal, 4, 24), ImpactState::low) << tick;
    // The first tick does not know of the thrashing yet, and the first calm one still counts as it.
    for (int tick = 1; tick <= 6; ++tick)
        EXPECT_EQ(impactOf(0, 0, nominal, 2, 25), ImpactState::low) << tick;
    EXPECT_EQ(impactOf(0, 0, nominal, 2, 25), ImpactState::high);
    for (int tick = 1; tick <= 11; ++tick)
        EXPECT_EQ(impactOf(0, 0, nominal, 2), ImpactState::high) << tick;
    EXPECT_EQ(impactOf(0, 0, nominal, 2), ImpactState::low);
}

}  // namespace
}  // namespace norvane
