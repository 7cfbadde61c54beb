#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dashboard/MenuRootView.h"
#include "dashboard/ShownPanel.h"
#include "linux/FakeSystemCalls.h"
#include "linux/Fixture.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/LinuxKernel.h"

namespace norvane {
namespace {

using Told = std::vector<std::string>;

// Sampler and dashboard on a captured machine's files, in virtual time: the kernel's ports answer from the
// files, all others are scripted. The files stand still, so what is counted in differences is 0.
class CapturedMachine {
 public:
    CapturedMachine(const RootFolder& root, FakeSystemCalls& system, const LinuxKernel::Lanes& lanes)
        : kernel_(root, system.calls, lanes) {
        sampler_->start();
        rest_.settle();
        sampler_->setUIVisible(true);
        panel_.appear();
    }
    void tick() { panel_.advance(std::chrono::seconds(1)); }
    const SystemSnapshot& snapshot() { return *(snapshot_ = sampler_->snapshot().get()); }
    // What the energy panel tells from its first line to the last.
    Told energyPanel() {
        panel_.perform(panel_.node("Impact", AccessibleRole::button), "press");
        tick();
        Told told = panel_.told();
        while (!told.empty() && !told.front().starts_with("Battery Level"))
            told.erase(told.begin());
        if (!told.empty()) told.pop_back();  // "Quit"
        return told;
    }

 private:
    Platform platform() {
        Platform scripted = rest_.platform();
        return {.wallClock = scripted.wallClock,
                .monotonicClock = scripted.monotonicClock,
                .dispatch = scripted.dispatch,
                .hostPort = kernel_.hostPort(),
                .sysctl = kernel_.sysctl(),
                .processInfo = kernel_.processInfo(),
                .registry = kernel_.registry(),
                .powerSources = kernel_.powerSources(),
                .fileManager = kernel_.fileManager(),
                .userNotificationCenter = scripted.userNotificationCenter,
                .standardOutput = scripted.standardOutput,
                .loginItem = scripted.loginItem,
                .workspace = scripted.workspace,
                .mainBundle = scripted.mainBundle,
                .userDefaults = scripted.userDefaults,
                .uuidSource = scripted.uuidSource,
                .textRuler = scripted.textRuler,
                .appearance = scripted.appearance,
                .windowServer = scripted.windowServer,
                .application = scripted.application};
    }

    LinuxKernel kernel_;
    ScriptedMachine rest_;
    PreferencesStore preferences_{rest_.userDefaults};
    std::shared_ptr<PerformanceSampler> sampler_ = PerformanceSampler::create(platform(), preferences_);
    PerformanceSampler::SnapshotPointer snapshot_;
    SmartPodManager smartPodManager_;
    CPUHardwareInfo hardware_{kernel_.sysctl()};
    MenuRootView view_{platform(),
                       preferences_,
                       sampler_,
                       smartPodManager_,
                       [this]() -> const CPUHardwareInfo& { return hardware_; },
                       {}};
    ShownPanel panel_{rest_, view_.content()};
};

TEST(CapturedMachine, TheEnergyPanelTellsWhatItsFilesSay) {
    TemporaryFolder files;
    files.copyFrom(fixture("hybrid-laptop"));
    const auto panel = [&] {
        FakeSystemCalls system;
        return CapturedMachine(files.root(), system, LinuxKernel::Lanes::sameThread()).energyPanel();
    };
    // 77 of 86 Wh, at 15.4 V.
    EXPECT_EQ(panel(),
              (Told{"Battery Level: 60%", "Power Source: Battery", "Estimating…", "Energy mode: Automatic",
                    "Battery Temperature: —",
                    "Battery is healthy.\nCompute demand, memory pressure, and energy consumption are "
                    "currently within optimal ranges.",
                    "Battery Health: 89.5%", "Normal", "Degradation", "Charge Cycles: 183",
                    "Max Capacity: 5000 mAh", "Design Capacity: 5584 mAh"}));
    files.write("/sys/class/power_supply/AC/uevent",
                "POWER_SUPPLY_NAME=AC\nPOWER_SUPPLY_TYPE=Mains\nPOWER_SUPPLY_ONLINE=1\n");
    EXPECT_EQ(panel().at(1), "Power Source: Power Adapter");
    files.remove("/sys/class/power_supply/BAT0");
    EXPECT_EQ(panel(), Told{});
}

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

TEST(CapturedMachine, StuckLanesCostATickNoMoreThanItsBudgetAndTakeNothingElseWithThem) {
    FakeSystemCalls system;
    system.calls.fileSystemSpace = [](const std::string&) {
        return std::optional(FileSystemSpace{500'000'000'000, 200'000'000'000});
    };
    const auto waiter = std::make_shared<GrantingWaiter>(system);
    const RootFolder root(fixture("hybrid-laptop"));
    CapturedMachine sound(root, system, LinuxKernel::Lanes::sameThread());
    CapturedMachine stuck(root, system,
                          {[](const std::string&) { return std::make_unique<StuckLane>(); }, waiter});
    EXPECT_EQ(waiter->granted, 2 * ReadBehind::kBudget)
        << "the hidden tick for heat and battery, the opening for graphics and volumes";
    for (int tick = 0; tick < 65; ++tick) {
        sound.tick();
        stuck.tick();
    }
    EXPECT_EQ(waiter->granted, 2 * ReadBehind::kBudget) << "what is stuck is not waited for again";

    const SystemSnapshot& want = sound.snapshot();
    const SystemSnapshot& is = stuck.snapshot();
    EXPECT_TRUE(want.hasBattery && !want.volumes.empty());
    EXPECT_TRUE(!is.hasBattery && is.volumes.empty()) << "what the lanes bring is missing";
    EXPECT_GT(want.totalMemoryGB, 0);
    EXPECT_EQ(is.totalMemoryGB, want.totalMemoryGB) << "and all else is there";
    EXPECT_EQ(is.usedMemoryGB, want.usedMemoryGB);
    EXPECT_EQ(is.uptime, want.uptime);
    EXPECT_EQ(is.performanceCoreUsages.size(), want.performanceCoreUsages.size());
}

}  // namespace
}  // namespace norvane
