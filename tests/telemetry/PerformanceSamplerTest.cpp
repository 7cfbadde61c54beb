#include "telemetry/PerformanceSampler.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class PerformanceSamplerTest : public testing::Test {
 protected:
    // How often each source has been asked.
    using Reads = std::map<std::string, std::uint64_t>;

    ScriptedAnswer<ScriptedRegistry::Services>& services(RegistryService kind) {
        return machine_.registry.services(kind);
    }
    Reads reads() {
        return {
            {"CPU", ticks()},
            {"memory", machine_.hostPort.statistics64.asked()},
            {"swap counters", machine_.hostPort.swapCountersAsked},
            {"swap", machine_.sysctl.swapUsage.asked()},
            {"pressure", machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).asked()},
            {"thermal", machine_.processInfo.thermal.asked()},
            {"cores", machine_.hostPort.processorInfo.asked()},
            {"uptime", machine_.processInfo.uptime.asked()},
            {"accelerators", services(RegistryService::IOAccelerator).asked()},
            {"drives", services(RegistryService::IOBlockStorageDriver).asked()},
            {"batteries", services(RegistryService::AppleSmartBattery).asked()},
            {"power sources", machine_.powerSources.sources.asked()},
            {"volumes", machine_.fileManager.volumes.asked()}};
    }
    // What the cadence makes of so many ticks, of which so many were full and so many slow: a full tick reads
    // the memory twice, and the swap in use with the first of them only. A refresh of the battery matches its
    // service and asks for the power sources twice.
    static Reads readsOf(std::uint64_t ticks, std::uint64_t full, std::uint64_t slow,
                         std::uint64_t batteries) {
        return {{"CPU", ticks},
                {"memory", ticks + full},
                {"swap counters", full},
                {"swap", ticks},
                {"pressure", ticks},
                {"thermal", ticks},
                {"cores", full},
                {"uptime", full},
                {"accelerators", slow},
                {"drives", slow},
                {"batteries", 2 * batteries},
                {"power sources", 2 * batteries},
                {"volumes", slow}};
    }
    // Every slow source looks whether the tick announced that it would be asked.
    void SetUp() override {
        machine_.registry.services(RegistryService::IOAccelerator).from([this] {
            EXPECT_TRUE(machine_.registry.lastTick.reads.accelerators);
            return std::nullopt;
        });
        machine_.registry.services(RegistryService::AppleSmartBattery).from([this] {
            EXPECT_TRUE(machine_.registry.lastTick.reads.battery);
            return ScriptedRegistry::Services({RegistryEntry(PropertyDictionary())});
        });
        // The others do not keep their tokens; a tick's first question does.
        machine_.powerSources.sources.from([this] {
            EXPECT_TRUE(machine_.hostPort.tokens.back().reads.battery);
            return std::nullopt;
        });
        machine_.fileManager.volumes.from([this] {
            EXPECT_TRUE(machine_.hostPort.tokens.back().reads.volumes);
            return std::nullopt;
        });
    }
    std::uint64_t ticks() { return machine_.hostPort.statistics.asked(); }
    ScriptedLoop::Queue& queue() { return *machine_.dispatch.serialLoopQueue("Norvane.sampler"); }

    ScriptedMachine machine_;
    PreferencesStore preferences_{machine_.userDefaults};
    std::shared_ptr<PerformanceSampler> sampler_ =
        PerformanceSampler::create(machine_.platform(), preferences_);
};

TEST_F(PerformanceSamplerTest, BeginsWithNothingPublished) {
    EXPECT_EQ(sampler_->snapshot().get(), nullptr);
    EXPECT_TRUE(sampler_->volumes().get()->empty());
    EXPECT_TRUE(sampler_->cpuHistory().get()->empty());
    EXPECT_EQ(sampler_->systemState().get(), ComponentState::normal);
    EXPECT_EQ(sampler_->menuBarStats().get(), (MenuBarStats{0, 0, 1.0}));
    EXPECT_FALSE(sampler_->isUIVisible().get());
    machine_.advance(1min);
    EXPECT_EQ(ticks(), 0U) << "nothing is read before the start";
}

TEST_F(PerformanceSamplerTest, HiddenRunsTheLightHalfOnceASecond) {
    machine_.hostPort.processors.setLoad(25);
    sampler_->start();
    machine_.settle();
    EXPECT_EQ(ticks(), 1U) << "the first tick comes at once";
    EXPECT_EQ(sampler_->menuBarStats().get(), (MenuBarStats{0, 4, 16})) << "a share needs two readings";
    machine_.advance(59s);
    EXPECT_EQ(reads(), readsOf(60, 0, 0, 2));
    EXPECT_EQ(sampler_->menuBarStats().get(), (MenuBarStats{25, 4, 16}));
    EXPECT_EQ(sampler_->snapshot().get(), nullptr);
    EXPECT_TRUE(sampler_->cpuHistory().get()->empty());
}

TEST_F(PerformanceSamplerTest, OpeningTicksAtOnceAndShowsAMovedTotal) {
    sampler_->start();
    machine_.advance(10s);
    machine_.hostPort.processors.setLoad(50);
    machine_.advance(100ms);
    sampler_->setUIVisible(true);
    machine_.settle();
    EXPECT_EQ(ticks(), 12U);
    ASSERT_NE(sampler_->snapshot().get(), nullptr);
    EXPECT_EQ(sampler_->snapshot().get()->cpuUsagePercent, 50);
    for (std::size_t i = 0; i < machine_.hostPort.tokens.size(); ++i)
        EXPECT_EQ(machine_.hostPort.tokens[i].value, i + 1) << "each tick reads anew";
}

TEST_F(PerformanceSamplerTest, OnlyAChangeToVisibleForcesAndHidingTicksNothing) {
    sampler_->setUIVisible(true);
    machine_.settle();
    EXPECT_EQ(reads(), readsOf(1, 1, 1, 1))
        << "the battery once, though the first tick and the forced one want it";
    sampler_->setUIVisible(true);
    machine_.settle();
    EXPECT_EQ(reads(), readsOf(2, 2, 1, 1));
    sampler_->setUIVisible(false);
    machine_.settle();
    EXPECT_EQ(reads(), readsOf(2, 2, 1, 1));

    // Shown and hidden again before the queue comes to it: the forced tick is a full one all the same, and
    // the next timer tick a light one.
    queue().hold();
    sampler_->start();
    sampler_->setUIVisible(true);
    sampler_->setUIVisible(false);
    machine_.settle();
    queue().letGo();
    machine_.settle();
    EXPECT_EQ(reads(), readsOf(4, 3, 2, 2));
    machine_.advance(1s);
    EXPECT_EQ(reads(), readsOf(5, 3, 2, 2));
}

TEST_F(PerformanceSamplerTest, ASnapshotHasNeutralValuesForWhatFailed) {
    machine_.hostPort.statistics.always(std::nullopt);
    machine_.hostPort.statistics64.always(std::nullopt);
    machine_.hostPort.processorInfo.always(std::nullopt);
    machine_.sysctl.swapUsage.always(std::nullopt);
    machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(std::nullopt);
    machine_.processInfo.thermal.always(17);
    machine_.processInfo.uptime.always(-1);
    sampler_->setUIVisible(true);
    machine_.settle();
    const auto snapshot = sampler_->snapshot().get();
    ASSERT_NE(snapshot, nullptr);
    EXPECT_EQ(snapshot->cpuUsagePercent, 0);
    EXPECT_EQ(snapshot->cpuSustained, 0);
    EXPECT_TRUE(snapshot->performanceCoreUsages.empty());
    EXPECT_EQ(snapshot->usedMemoryGB, 0);
    EXPECT_EQ(snapshot->totalMemoryGB, 16);
    EXPECT_EQ(snapshot->memoryPressure, 1);
    EXPECT_EQ(snapshot->thermalLevel, ThermalLevel::nominal);
    EXPECT_EQ(snapshot->uptime, 0);
    EXPECT_EQ(snapshot->timestamp, machine_.time.wall());
    EXPECT_EQ(snapshot->energyImpact, ImpactState::low);
}

TEST_F(PerformanceSamplerTest, HistoryKeepsSixtyPointsAndGainsNothingWhileHidden) {
    sampler_->start();
    sampler_->setUIVisible(true);
    machine_.advance(30s);
    const auto young = sampler_->cpuHistory().get();
    EXPECT_EQ(young->size(), 32U);
    sampler_->setUIVisible(false);
    machine_.advance(1min);
    EXPECT_EQ(sampler_->cpuHistory().get(), young);
    sampler_->setUIVisible(true);
    machine_.hostPort.processors.setLoad(0, 100);
    machine_.advance(100s);
    const auto full = sampler_->cpuHistory().get();
    ASSERT_EQ(full->size(), 60U);
    EXPECT_EQ(full->back(), (CPUHistoryPoint{.performance = 25, .efficiency = 0, .total = 25}));
    machine_.advance(1s);
    EXPECT_EQ(sampler_->cpuHistory().get()->size(), 60U);
    EXPECT_EQ(sampler_->cpuHistory().get()->front(), (*full)[1]) << "the oldest has gone";
}

TEST_F(PerformanceSamplerTest, ATickThatOvertakesThePublicationBuildsOnTheOlderHistory) {
    sampler_->start();
    sampler_->setUIVisible(true);
    machine_.advance(9s);
    EXPECT_EQ(sampler_->cpuHistory().get()->size(), 11U);
    machine_.dispatch.mainLoopQueue().hold();
    machine_.advance(3s);
    EXPECT_EQ(sampler_->cpuHistory().get()->size(), 11U) << "published values wait for the main thread";
    machine_.dispatch.mainLoopQueue().letGo();
    machine_.settle();
    EXPECT_EQ(sampler_->cpuHistory().get()->size(), 12U) << "each of the three built on the same";
}

TEST_F(PerformanceSamplerTest, PublishesTheStateBeforeTheStatsAndTheSnapshotAfterBoth) {
    std::string order;
    const auto state = sampler_->systemState().observe([&](auto) { order += 's'; });
    const auto stats = sampler_->menuBarStats().observe([&](const auto&) { order += 'm'; });
    const auto snapshot = sampler_->snapshot().observe([&](const auto&) { order += 'S'; });
    const auto volumes = sampler_->volumes().observe([&](const auto&) { order += 'V'; });
    const auto history = sampler_->cpuHistory().observe([&](const auto&) { order += 'H'; });
    sampler_->setUIVisible(true);
    machine_.settle();
    EXPECT_EQ(order, "smSVH");
}

TEST_F(PerformanceSamplerTest, StopPausesAndStartGoesOn) {
    sampler_->start();
    sampler_->setUIVisible(true);
    machine_.advance(10s);
    sampler_->stop();
    machine_.advance(10s);
    const auto history = sampler_->cpuHistory().get();
    EXPECT_EQ(ticks(), 12U);
    sampler_->start();
    machine_.settle();
    EXPECT_EQ(sampler_->cpuHistory().get()->size(), history->size() + 1);
    sampler_->start();  // anew, not twice
    machine_.advance(10s);
    EXPECT_EQ(ticks(), 24U);
}

TEST_F(PerformanceSamplerTest, ASuspendAndASteppedClockCostNoTicksAndAddNone) {
    sampler_->start();
    machine_.advance(10s);
    EXPECT_EQ(ticks(), 11U);
    machine_.suspend(8h);
    EXPECT_EQ(ticks(), 11U) << "no burst after waking";
    machine_.advance(1s);
    EXPECT_EQ(ticks(), 12U);
    machine_.time.stepWallClock(-24h);
    machine_.advance(10s);
    EXPECT_EQ(ticks(), 22U);
    queue().hold();  // the process is stopped for a while
    machine_.advance(30s);
    queue().letGo();
    machine_.settle();
    EXPECT_EQ(ticks(), 23U) << "thirty missed firings are one tick";
}

TEST_F(PerformanceSamplerTest, EndsWithTasksOnTheirWay) {
    sampler_->start();
    sampler_->setUIVisible(true);
    machine_.dispatch.mainLoopQueue().hold();
    machine_.advance(3s);
    sampler_.reset();
    machine_.dispatch.mainLoopQueue().letGo();
    const auto asked = ticks();
    machine_.advance(1min);
    EXPECT_EQ(ticks(), asked);
}

}  // namespace
}  // namespace norvane
