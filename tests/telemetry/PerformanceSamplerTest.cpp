#include "telemetry/PerformanceSampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class PerformanceSamplerTest : public testing::Test {
 protected:
    // How many ticks there were, and how many of them were due to read what only some read.
    struct Due {
        std::uint64_t ticks, full, third, thirtieth, battery;
    };
    // A full tick reads the memory twice, and the swap in use with the first of them only. A refresh of the
    // battery looks for it twice. What is slow is announced with the tick.
    void expectReads(const Due& due) {
        const auto services = [this](RegistryService kind) {
            return machine_.registry.services(kind).asked();
        };
        const auto announced = [this](bool TickReads::*slow) -> std::uint64_t {
            const auto& tokens = machine_.hostPort.tokens;
            return static_cast<std::uint64_t>(
                std::count_if(tokens.begin(), tokens.end(), [&](auto tick) { return tick.reads.*slow; }));
        };
        ScriptedHostPort& host = machine_.hostPort;
        ScriptedSysctl& sysctl = machine_.sysctl;
        struct Source {
            const char* name;
            std::uint64_t asked, want;
        };
        for (const Source& source :
             {Source{"CPU", host.statistics.asked(), due.ticks},
              Source{"memory", host.statistics64.asked(), due.ticks + due.full},
              Source{"swap counters", host.swapCountersAsked, due.full},
              Source{"swap", sysctl.swapUsage.asked(), due.ticks},
              Source{"cores", host.processorInfo.asked(), due.full},
              Source{"uptime", machine_.processInfo.uptime.asked(), due.full},
              Source{"accelerators", services(RegistryService::IOAccelerator), due.third},
              Source{"accelerators announced", announced(&TickReads::accelerators), due.third},
              Source{"drives", services(RegistryService::IOBlockStorageDriver), due.third},
              Source{"batteries", services(RegistryService::AppleSmartBattery), 2 * due.battery},
              Source{"batteries announced", announced(&TickReads::battery), due.battery},
              Source{"volumes", machine_.fileManager.volumes.asked(), due.thirtieth},
              Source{"volumes announced", announced(&TickReads::volumes), due.thirtieth}})
            EXPECT_EQ(source.asked, source.want) << source.name << " after " << due.ticks << " ticks";
    }
    void setVisible(bool isVisible) {
        sampler_->setUIVisible(isVisible);
        machine_.settle();
    }
    std::uint64_t ticks() { return machine_.hostPort.statistics.asked(); }

    ScriptedMachine machine_;
    PreferencesStore preferences_{machine_.userDefaults};
    std::shared_ptr<PerformanceSampler> sampler_ =
        PerformanceSampler::create(machine_.platform(), preferences_);
};

TEST_F(PerformanceSamplerTest, HiddenRunsTheLightHalfOnceASecondAndOnlyAnOpeningForcesEverything) {
    machine_.hostPort.processors.setLoad(25);
    machine_.advance(1min);
    expectReads({0, 0, 0, 0, 0});
    sampler_->start();
    machine_.settle();
    EXPECT_EQ(sampler_->menuBarStats().get(), (MenuBarStats{0, 4, 16})) << "a share needs two readings";
    machine_.advance(59s);
    expectReads({60, 0, 0, 0, 2});
    EXPECT_EQ(sampler_->menuBarStats().get(), (MenuBarStats{25, 4, 16}));
    EXPECT_EQ(sampler_->snapshot().get(), nullptr);

    machine_.hostPort.processors.setLoad(50);
    machine_.advance(100ms);
    setVisible(true);
    expectReads({61, 1, 1, 1, 3});
    EXPECT_EQ(sampler_->snapshot().get()->cpuUsagePercent, 50) << "of the last tenth of a second";
    setVisible(true);
    expectReads({62, 2, 1, 1, 3});
    setVisible(false);
    expectReads({62, 2, 1, 1, 3});

    // Shown and hidden again before the queue comes to it: a full tick all the same, and then light ones, of
    // which thirty that were missed are one.
    ScriptedLoop::Queue& queue = *machine_.dispatch.serialLoopQueue("Norvane.sampler");
    queue.hold();
    sampler_->setUIVisible(true);
    sampler_->setUIVisible(false);
    machine_.advance(30s);
    queue.letGo();
    machine_.settle();
    expectReads({64, 3, 2, 2, 4});
    setVisible(true);
    machine_.advance(26s);  // to the 91st
    expectReads({91, 30, 12, 4, 14});
    for (std::size_t i = 0; i < machine_.hostPort.tokens.size(); ++i)
        EXPECT_EQ(machine_.hostPort.tokens[i].value, i + 1) << "each tick reads anew";
}

TEST_F(PerformanceSamplerTest, HistoryKeepsSixtyPointsOfThePublishedOne) {
    sampler_->start();
    setVisible(true);
    machine_.advance(9s);
    const auto young = sampler_->cpuHistory().get();
    EXPECT_EQ(young->size(), 11U);
    machine_.dispatch.mainLoopQueue().hold();
    machine_.advance(3s);
    EXPECT_EQ(sampler_->cpuHistory().get(), young) << "published values wait for the main thread";
    machine_.dispatch.mainLoopQueue().letGo();
    machine_.settle();
    EXPECT_EQ(sampler_->cpuHistory().get()->size(), 12U) << "each of the three built on the same";
    machine_.advance(100s);
    machine_.hostPort.processors.setLoad(0, 100);
    machine_.advance(1s);
    const auto full = sampler_->cpuHistory().get();
    EXPECT_EQ(full->size(), 60U);
    EXPECT_EQ(full->back(), (CPUHistoryPoint{.performance = 25, .efficiency = 0, .total = 25}));
}

TEST_F(PerformanceSamplerTest, PublishesTheStateBeforeTheStatsAndTheSnapshotAfterBoth) {
    std::string order;
    const auto state = sampler_->systemState().observe([&](auto) { order += 's'; });
    const auto stats = sampler_->menuBarStats().observe([&](const auto&) { order += 'm'; });
    const auto snapshot = sampler_->snapshot().observe([&](const auto&) { order += 'S'; });
    const auto volumes = sampler_->volumes().observe([&](const auto&) { order += 'V'; });
    const auto history = sampler_->cpuHistory().observe([&](const auto&) { order += 'H'; });
    setVisible(true);
    EXPECT_EQ(order, "smSVH");
}

TEST_F(PerformanceSamplerTest, AlertsGoByWhatIsPublishedAndNotByWhatIsOnItsWayAndNoneWhileHidden) {
    const auto setBattery = [this](int percentage) {
        machine_.registry.services(RegistryService::AppleSmartBattery)
            .always({{RegistryEntry({{"CurrentCapacity", percentage}, {"MaxCapacity", 100}})}});
    };
    const auto& told = machine_.userNotificationCenter.added;
    preferences_.setBatteryAlertEnabled(true);
    setBattery(5);
    sampler_->start();
    machine_.advance(1h);
    setVisible(true);
    EXPECT_EQ(told.size(), 0U) << "nothing published to examine";
    setBattery(90);
    setVisible(false);
    machine_.advance(1h);
    EXPECT_EQ(told.size(), 0U);
    setVisible(true);
    EXPECT_EQ(told.size(), 1U) << "of what was on screen at the closing";
    machine_.suspend(24h);
    machine_.dispatch.mainLoopQueue().hold();
    setBattery(5);
    machine_.advance(10s);
    EXPECT_EQ(told.size(), 1U);
    machine_.dispatch.mainLoopQueue().letGo();
    machine_.advance(1s);
    EXPECT_EQ(told.size(), 2U);
}

TEST_F(PerformanceSamplerTest, TicksOnAfterStopSuspendAndSteppedClocksAndEndsWithTasksOnTheirWay) {
    sampler_->start();
    machine_.advance(10s);
    machine_.suspend(8h);
    EXPECT_EQ(ticks(), 11U) << "no burst after waking";
    machine_.time.stepWallClock(-24h);
    machine_.advance(10s);
    EXPECT_EQ(ticks(), 21U);
    sampler_->stop();
    machine_.advance(10s);
    EXPECT_EQ(ticks(), 21U);
    sampler_->start();
    sampler_->start();  // anew, not twice
    machine_.advance(10s);
    EXPECT_EQ(ticks(), 32U);
    machine_.dispatch.mainLoopQueue().hold();
    setVisible(true);
    machine_.advance(3s);
    sampler_.reset();
    machine_.dispatch.mainLoopQueue().letGo();
    machine_.advance(1min);
    EXPECT_EQ(ticks(), 36U);
}

}  // namespace
}  // namespace norvane
