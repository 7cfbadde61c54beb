#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "linux/FakeSystemCalls.h"
#include "linux/Fixture.h"
#include "MachineSampler.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// Takes one request and never finishes it.
class StuckLane final : public Lane {
 public:
    bool post(Task task) override {
        if (task_) return false;
        task_ = std::move(task);
        return true;
    }

 private:
    Task task_;
};

// Grants the whole time, in which nothing comes.
class GrantingWaiter final : public LaneWaiter {
 public:
    explicit GrantingWaiter(FakeSystemCalls& system) : system_(system) {}
    void arrived() override {}
    void wait(const std::function<bool()>&, std::chrono::nanoseconds budget) override {
        granted += budget;
        system_.advance(budget);
    }
    std::chrono::nanoseconds granted{0};

 private:
    FakeSystemCalls& system_;
};

TEST(StuckLanes, CostATickNoMoreThanItsBudgetAndTakeNothingElseWithThem) {
    FakeSystemCalls system;
    system.calls.fileSystemSpace = [](const std::string&) {
        return std::optional(FileSystemSpace{500'000'000'000, 200'000'000'000});
    };
    const auto waiter = std::make_shared<GrantingWaiter>(system);
    const LinuxKernel::Lanes stuck{[](const std::string&) { return std::make_unique<StuckLane>(); }, waiter};
    const RootFolder root(fixture("hybrid-laptop"));
    LinuxKernel stuckKernel(root, system.calls, stuck);
    LinuxKernel soundKernel(root, system.calls, LinuxKernel::Lanes::sameThread());
    MachineSampler withStuck(stuckKernel);
    MachineSampler withSound(soundKernel);

    withSound.openDashboard();
    withStuck.openDashboard();
    EXPECT_EQ(waiter->granted, 2 * ReadBehind::kBudget)
        << "the hidden tick for heat and battery, the opening for graphics and volumes";
    for (int tick = 0; tick < 65; ++tick) {
        withSound.tick();
        withStuck.tick();
    }
    EXPECT_EQ(waiter->granted, 2 * ReadBehind::kBudget) << "what is stuck is not waited for again";

    const SystemSnapshot& sound = withSound.snapshot();
    ASSERT_TRUE(sound.hasBattery);
    ASSERT_TRUE(sound.isOnBattery);
    ASSERT_FALSE(sound.volumes.empty());
    ASSERT_GT(sound.totalDiskGB, 0);

    // What the lanes bring is missing, and everything else as on the sound machine.
    SystemSnapshot want = sound;
    want.thermalLevel = ThermalLevel::nominal;
    want.gpuUsage = 0;
    want.volumes.clear();
    want.usedDiskGB = want.totalDiskGB = 0;
    want.isStorageCritical = want.isStorageLow = want.isStorageFilling = false;
    want.hasBattery = want.isOnBattery = want.isBatteryWarm = false;
    want.isCharging = true;
    want.batteryPercentage = 100;
    want.batteryTimeRemaining = "—";
    want.batteryCycleCount.reset();
    want.batteryDesignCapacitymAh.reset();
    want.batteryMaxCapacitymAh.reset();
    want.batteryCurrentCapacitymAh.reset();
    want.batteryHealthCondition.reset();
    want.batteryTemperatureC.reset();
    EXPECT_TRUE(withStuck.snapshot() == want);
    EXPECT_EQ(withStuck.snapshot().totalMemoryGB, sound.totalMemoryGB);
    EXPECT_GT(sound.totalMemoryGB, 0);
}

}  // namespace
}  // namespace norvane
