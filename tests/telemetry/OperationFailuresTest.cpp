#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/FaultyPorts.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// A laptop that has something to tell in every field: four efficiency cores that are pinned and four
// performance cores near it, 16 GB under pressure and swapping, a busy GPU and a busy, nearly full disk, hot,
// on battery, with every alert on. Each number is beyond a threshold and the neutral value before it.
// Telemetry runs on it through ports that can be made to fail.
class FaultyLaptop {
 public:
    // A uniform one does not tell kinds of cores apart.
    explicit FaultyLaptop(bool isUniform) {
        setProcessors(isUniform);
        setMemory();
        setDevices();
        setVolumes();
        preferences_.setSustainedLoadNotificationsEnabled(true);
        preferences_.setStorageAlertEnabled(true);
        preferences_.setStorageAlertThresholdGB(25);
        preferences_.setBatteryAlertEnabled(true);
        preferences_.setBatteryAlertThresholdPct(50);
        machine_.advance(1min);  // past the grace period
        defaults_.otherKeys.clear();
        for (AnyOperation* operation : operations_)
            operation->forgetAsked();
    }

    // Long enough for everything to be decided: more than thirty ticks, more than three minutes of which
    // most pass asleep.
    void run() {
        sampler_->setUIVisible(true);
        sampler_->start();
        machine_.advance(15s);
        machine_.suspend(170s);
        machine_.advance(15s);
    }
    // And for everything to be read and decided again.
    void runOn() { machine_.advance(35s); }

    Outcome outcome() const {
        const auto snapshot = sampler_->snapshot().get();
        const auto history = sampler_->cpuHistory().get();
        if (!snapshot || history->empty()) {
            ADD_FAILURE() << "no snapshot";
            return {};
        }
        EXPECT_EQ(*sampler_->volumes().get(), snapshot->volumes);
        Outcome outcome{.snapshot = *snapshot,
                        .systemState = sampler_->systemState().get(),
                        .menuBarStats = sampler_->menuBarStats().get(),
                        .newestPoint = history->back(),
                        .shown = machine_.userNotificationCenter.shown,
                        .printed = machine_.standardOutput.lines};
        for (DiskSnapshot& volume : outcome.snapshot.volumes)
            volume.id = {};
        return outcome;
    }

    const Operations& operations() const { return operations_; }
    const std::vector<std::string>& otherKeysAsked() const { return defaults_.otherKeys; }

 private:
    // Seconds awake.
    std::uint32_t seconds() const {
        return static_cast<std::uint32_t>(
            std::chrono::duration_cast<std::chrono::seconds>(machine_.time.monotonic().time_since_epoch())
                .count());
    }

    void setProcessors(bool isUniform) {
        if (!isUniform) {
            machine_.sysctl.number(SysctlNumber::hw_perflevel0_logicalcpu).always(4);
            machine_.sysctl.number(SysctlNumber::hw_perflevel1_logicalcpu).always(4);
        }
        machine_.sysctl.number(SysctlNumber::hw_logicalcpu).always(8);
        machine_.sysctl.number(SysctlNumber::hw_optional_arm64).always(1);
        machine_.sysctl.text(SysctlText::hw_model).always("MacBookPro18,3");
        machine_.hostPort.statistics.from([this] {
            const std::uint32_t t = seconds();
            return HostCPULoadInfo{.user = 720 * t, .system = 24 * t, .idle = 48 * t, .nice = 8 * t};
        });
        machine_.hostPort.processorInfo.from([this] {
            const auto t = static_cast<std::int32_t>(seconds());
            ProcessorInfo info{.processorCount = 8, .ticks = {}};
            for (int i = 0; i < 4; ++i)
                info.ticks.insert(info.ticks.end(), {100 * t, 0, 0, 0});
            for (int i = 0; i < 4; ++i)
                info.ticks.insert(info.ticks.end(), {80 * t, 6 * t, 12 * t, 2 * t});
            return info;
        });
        machine_.processInfo.thermal.always(2);
    }
    void setMemory() {
        machine_.hostPort.statistics64.from([this] {
            constexpr std::uint64_t kPagesPerGB = 262'144;
            constexpr std::uint64_t kPagesPerMB = 256;
            return VMStatistics64{.wire_count = 3 * kPagesPerGB,
                                  .active_count = 4 * kPagesPerGB,
                                  .compressor_page_count = 5 * kPagesPerGB,
                                  .external_page_count = 3 * kPagesPerGB,
                                  .purgeable_count = kPagesPerGB,
                                  .swapins = 20 * kPagesPerMB * seconds(),
                                  .swapouts = 10 * kPagesPerMB * seconds()};
        });
        machine_.sysctl.swapUsage.always(XswUsage{8ULL << 30, 6ULL << 30, 2ULL << 30});
        machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(4);
    }
    void setDevices() {
        machine_.registry.services(RegistryService::IOBlockStorageDriver).from([this] {
            constexpr std::int64_t kMB = 1'048'576;
            return Services{RegistryEntry(
                {{"Statistics", PropertyDictionary{{"Bytes (Read)", 300 * kMB * seconds()},
                                                   {"Bytes (Write)", 200 * kMB * seconds()}}}})};
        });
        machine_.registry.services(RegistryService::IOAccelerator)
            .always(serviceWith("PerformanceStatistics", {"Device Utilization %"}, 90));
        machine_.registry.services(RegistryService::AppleSmartBattery)
            .always({{RegistryEntry({{"DesignCapacity", 5'100},
                                     {"AppleRawMaxCapacity", 4'800},
                                     {"AppleRawCurrentCapacity", 1'920},
                                     {"MaxCapacity", 100},
                                     {"CurrentCapacity", 40},
                                     {"CycleCount", 312},
                                     {"Temperature", 3'600},
                                     {"ExternalConnected", false},
                                     {"IsCharging", false}})}});
        machine_.powerSources.sources.always({{PropertyDictionary{
            {"Is Charged", false}, {"Time to Empty", 135}, {"BatteryHealthCondition", "Normal"}}}});
    }
    void setVolumes() {
        constexpr std::int64_t kGB = 1'000'000'000;
        machine_.fileManager.volumes.always(
            {{{"/", VolumeResourceValues{"System", 500 * kGB, 9 * kGB, true, true, false}},
              {"/media/ada/STICK", VolumeResourceValues{{}, 64 * kGB, 14 * kGB, false, false, true}}}});
    }
    Platform platform() {
        return {.wallClock = wallClock_,
                .monotonicClock = monotonicClock_,
                .dispatch = machine_.dispatch,
                .hostPort = hostPort_,
                .sysctl = sysctl_,
                .processInfo = processInfo_,
                .registry = registry_,
                .powerSources = powerSources_,
                .fileManager = fileManager_,
                .userNotificationCenter = notifications_,
                .standardOutput = output_,
                .loginItem = machine_.loginItem,
                .workspace = machine_.workspace,
                .mainBundle = machine_.mainBundle,
                .userDefaults = defaults_,
                .uuidSource = uuids_,
                .textRuler = machine_.textRuler,
                .appearance = machine_.appearance,
                .windowServer = machine_.windowServer,
                .application = machine_.application};
    }

    ScriptedMachine machine_;
    Operations operations_;
    FaultyWallClock wallClock_{machine_.time.wallClock(), operations_};
    FaultyMonotonicClock monotonicClock_{machine_.time.monotonicClock(), operations_};
    FaultyHostPort hostPort_{machine_.hostPort, operations_};
    FaultySysctl sysctl_{machine_.sysctl, operations_};
    FaultyProcessInfo processInfo_{machine_.processInfo, operations_};
    FaultyRegistry registry_{machine_.registry, operations_};
    FaultyPowerSources powerSources_{machine_.powerSources, operations_};
    FaultyFileManager fileManager_{machine_.fileManager, operations_};
    FaultyUserNotificationCenter notifications_{machine_.userNotificationCenter, operations_};
    FaultyStandardOutput output_{machine_.standardOutput, operations_};
    FaultyUserDefaults defaults_{machine_.userDefaults, operations_};
    FaultyUUIDSource uuids_{machine_.uuidSource, operations_};
    PreferencesStore preferences_{defaults_};
    std::shared_ptr<PerformanceSampler> sampler_ = PerformanceSampler::create(platform(), preferences_);
};

// What is seen of a healthy machine, and again a while later.
struct Healthy {
    explicit Healthy(bool isUniform) : laptop(isUniform) {
        laptop.run();
        first = laptop.outcome();
        laptop.runOn();
        later = laptop.outcome();
    }

    FaultyLaptop laptop;
    Outcome first, later;
};

class OperationFailuresTest : public testing::Test {
 protected:
    // The machine that asks this operation: the laptop, if it does.
    const Healthy& askerOf(std::size_t operation) const {
        return laptop_.laptop.operations()[operation]->asked() > 0 ? laptop_ : uniform_;
    }

    Healthy laptop_{false};
    Healthy uniform_{true};
};

TEST_F(OperationFailuresTest, TheHealthyMachineHasSomethingToTellInEveryField) {
    Outcome neutral;
    neutral.snapshot.memoryPressure = 1;
    neutral.snapshot.batteryPercentage = 100;
    neutral.snapshot.isCharging = true;
    // Cores that are pinned leave no room for the two flags of calm ones.
    neutral.snapshot.isSystemIdle = neutral.snapshot.isAppleSiliconOptimized = true;
    const std::string all = differences(neutral, laptop_.first);
    EXPECT_EQ(std::count(all.begin(), all.end(), ','), 60 + 5 - 1 - 1) << all;
    EXPECT_EQ(all.find("printed"), std::string::npos);
    EXPECT_EQ(laptop_.first.shown.size(), 4U);
    EXPECT_EQ(laptop_.first.snapshot.performanceCoreUsages, std::vector<double>(4, 88));
    EXPECT_EQ(laptop_.first.snapshot.energyImpact, ImpactState::high);
}

TEST_F(OperationFailuresTest, EveryOperationWithFaultsIsAskedByATickAndNoOther) {
    const Operations& operations = laptop_.laptop.operations();
    for (std::size_t i = 0; i < operations.size(); ++i) {
        const AnyOperation& operation = *operations[i];
        const AnyOperation& onUniform = *uniform_.laptop.operations()[i];
        const bool isAsked = operation.asked() + onUniform.asked() > 0;
        EXPECT_EQ(isAsked, operation.whyNotAsked().empty())
            << operation.name() << ' ' << operation.whyNotAsked();
    }
    EXPECT_EQ(laptop_.laptop.otherKeysAsked(), std::vector<std::string>())
        << "a preference that a tick reads needs its faults";
}

TEST_F(OperationFailuresTest, EachFailsAloneAndEverythingElseStaysTrue) {
    std::size_t runs = 0;
    for (std::size_t i = 0; i < laptop_.laptop.operations().size(); ++i) {
        const Healthy& healthy = askerOf(i);
        const auto faults = healthy.laptop.operations()[i]->faultNames();
        for (std::size_t fault = 0; fault < faults.size(); ++fault, ++runs) {
            FaultyLaptop faulty(&healthy == &uniform_);
            AnyOperation& operation = *faulty.operations()[i];
            const std::string name =
                operation.name() + " " + faults[fault] + " (" + std::to_string(fault) + ")";
            operation.fail(fault);
            faulty.run();
            EXPECT_GT(operation.asked(), 0U) << name;
            Outcome want = healthy.first;
            operation.applyEffect(want);
            EXPECT_EQ(differences(faulty.outcome(), want), "") << name;

            if (operation.leavesTraces()) continue;
            operation.recover();
            faulty.runOn();
            Outcome recovered = faulty.outcome();
            recovered.shown = healthy.later.shown;  // these come when they come
            recovered.printed = healthy.later.printed;
            EXPECT_EQ(differences(recovered, healthy.later), "") << name << ", and recovers";
        }
    }
    EXPECT_GT(runs, 100U);
}

}  // namespace
}  // namespace norvane
